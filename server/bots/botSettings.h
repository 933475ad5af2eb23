#pragma once

#include "server/bots/skill.h"

namespace kelvora::server {

/// The bots that the operator wants.
struct BotSettings {
  static constexpr int maxCount = 5;  ///< one slot stays free for a person

  int count = 0;  ///< 0 to `maxCount`
  SkillLevel skill = SkillLevel::mixed;
};

}  // namespace kelvora::server
