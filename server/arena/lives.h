#pragma once

#include <cstdint>
#include <optional>

#include "server/arena/economy.h"
#include "server/arena/pendingCaptures.h"
#include "server/arena/roster.h"
#include "server/arena/rounds.h"

namespace kelvora::server {

/// Death and respawn.
class Lives {
 public:
  Lives(Roster& roster, PendingCaptures& pending, Economy& economy, const Rounds& rounds, const ArenaRules& rules);

  /// Kills a player, who may also be the winner. Clients carry the capture out when the named vertex expires, or at
  /// once if there is none.
  void kill(Player& winner, Player& loser, const std::optional<Spot>& vertex, Millis now);
  /// Handles a player's request for a new life. Granted now, or as soon as it is due.
  void requestSpawn(Player& player, Millis now);
  /// Respawns players whose requests are due, and invites the others.
  void respawnDue(Millis now);

 private:
  void respawn(Player& player);
  Millis respawnWait(const Player& player, Millis now) const;

  Roster& roster_;
  PendingCaptures& pending_;
  Economy& economy_;
  const Rounds& rounds_;
  const int captureCredits_;
  const Millis respawnWaitMs_;
  std::int64_t captures_ = 0;  // in all rounds
};

}  // namespace kelvora::server
