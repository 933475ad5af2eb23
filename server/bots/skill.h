#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "base/millis.h"
#include "protocol/powerupTable.h"

namespace kelvora::server {

/// How well a bot plays. In a mixed company every bot has its own level.
enum class SkillLevel { easy, normal, hard, mixed };

/// "easy", "normal", "hard" or "mixed"; nothing for any other word.
std::optional<SkillLevel> skillLevel(std::string_view word);

/// The numbers behind a level.
struct Skill {
  double throttle;      ///< the highest, as a part of full speed
  Millis reaction;      ///< how late it sees the others
  double turnRate;      ///< radians a second
  double wobble;        ///< radians by which the hand errs
  double smallestLoop;  ///< radius of the circle flown around an opponent, world units
  double largestLoop;
  double foresight;     ///< part of an opponent's way that is reckoned with, 0 to 1
  double aimError;      ///< by which a circle misses the opponent, as a part of its radius at the most
  bool foreseesTurns;   ///< reckons with circles, too, and closes whatever loop there is to close
  double alertness;     ///< chance to notice a loop that is about to close around it
  Millis shortestRest;  ///< between two attempts
  Millis longestRest;
  Millis triumph;                           ///< how long it enjoys a capture before it goes on
  double restThrottle;                      ///< while it rests
  std::array<bool, powerupSlotCount> uses;  ///< the powerups that it knows how to use
};

/// Of a level that is not `mixed`.
const Skill& skillOf(SkillLevel level);

}  // namespace kelvora::server
