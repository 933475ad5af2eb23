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

  /// Kills a player, who may be the winner too. Clients carry a capture out when the named vertex ends, and at once if
  /// there is none.
  void kill(Player& winner, Player& loser, const std::optional<Spot>& vertex, Millis now);
  /// A player's request for a new life, granted now or as soon as it is due.
  void requestSpawn(Player& player, Millis now);
  /// Respawns the players who have asked for it and are due, and invites the others.
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
  std::int64_t captures_ = 0;  // of all rounds
};

}  // namespace kelvora::server
