#pragma once

#include "server/bots/skill.h"

namespace kelvora::server {

/// The bots that the operator asks for.
struct BotWishes {
  static constexpr int most = 5;  ///< one place is a person's, without whom there are none

  int count = 0;  ///< 0 to `most`
  SkillLevel skill = SkillLevel::mixed;
};

}  // namespace kelvora::server
