#pragma once

#include "base/millis.h"

namespace kelvora::server {

/// Default credits per minute for a living player.
inline constexpr int defaultIncome = 5;

/// The rules of an arena. Operators can change all but the credits for captures and survival.
struct ArenaRules {
  Millis roundMs = 180'000;             ///< length of a round; its clock stops while no person is in
  int captureGoal = 10;                 ///< captures that end a round, 0 for none
  Millis intermissionMs = 12'000;       ///< length of the pause between rounds
  Millis respawnWaitMs = 3'000;         ///< minimum time from death to respawn
  int captureCredits = 10;              ///< for each player captured or killed
  int survivalCredits = 10;             ///< for being alive when a round ends
  int incomePerMinute = defaultIncome;  ///< credits per minute spent alive in a round, paid in whole credits
  bool coach = false;                   ///< tells newcomers what to do; the server's option is on by default
  double speedFactor = 3;               ///< maximum sustained speed in multiples of the design speed, 0 for no limit
  int spectators = 0;                   ///< maximum number
};

}  // namespace kelvora::server
