#pragma once

#include "server/bots/skill.h"

namespace kelvora::server {

/// The bots that the operator wants.
struct BotWishes {
  static constexpr int maxCount = 5;  ///< one slot is left for a person; without people there are no bots

  int count = 0;  ///< 0 to `maxCount`
  SkillLevel skill = SkillLevel::mixed;
};

}  // namespace kelvora::server
