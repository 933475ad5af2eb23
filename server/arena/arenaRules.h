#pragma once

#include "base/millis.h"

namespace kelvora::server {

/// Credits a minute that a living player earns, unless the operator says otherwise.
inline constexpr int defaultIncome = 5;

/// The numbers of the game that an operator may set.
struct ArenaRules {
  Millis roundMs = 180'000;             ///< how long a round is played; its clock stands while no person is in
  int captureGoal = 10;                 ///< captures that end a round at once, 0 for no goal
  Millis intermissionMs = 12'000;       ///< between two rounds
  Millis respawnWaitMs = 3'000;         ///< from a player's death to his respawn, at the least
  int captureCredits = 10;              ///< for each player captured or killed
  int survivalCredits = 10;             ///< for being alive when a round ends
  int incomePerMinute = defaultIncome;  ///< credits, in whole ones, for the time spent alive in a round
  double speedFactor = 3;               ///< how many times the design speed a player may keep up, 0 for any speed
};

}  // namespace kelvora::server
