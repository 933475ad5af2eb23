#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "base/millis.h"
#include "protocol/powerupTable.h"

namespace kelvora::server {

/// A bot's skill. With `mixed`, each bot has its own level.
enum class SkillLevel { easy, normal, hard, mixed };

/// Parses "easy", "normal", "hard" or "mixed". Nothing for any other word.
std::optional<SkillLevel> skillLevel(std::string_view word);

/// The parameters of a level.
struct Skill {
  double throttle;       ///< maximum, as a fraction of full speed
  Millis reaction;       ///< the delay with which it sees the others
  double turnRate;       ///< radians per second
  double wobble;         ///< radians, the hand's error
  double minLoopRadius;  ///< minimum radius of a circle around an opponent, world units
  double maxLoopRadius;
  double foresight;    ///< how far an opponent's motion is predicted, 0 to 1
  double aimError;     ///< maximum distance of a circle's centre from the opponent, as a fraction of its radius
  bool foreseesTurns;  ///< predicts circles as well, and closes every possible loop
  double alertness;    ///< probability of noticing a loop that is closing around it
  Millis minRest;      ///< minimum pause between two attempts
  Millis maxRest;
  Millis triumph;                           ///< how long it enjoys a capture
  double restThrottle;                      ///< fraction of full speed while it rests
  std::array<bool, powerupSlotCount> uses;  ///< powerups that it can use
};

/// The parameters of a level other than `mixed`.
const Skill& skillOf(SkillLevel level);

}  // namespace kelvora::server
