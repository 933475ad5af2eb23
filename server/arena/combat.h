#pragma once

#include <string_view>
#include <vector>

#include "server/arena/lives.h"
#include "server/arena/roster.h"
#include "server/arena/weapons.h"

namespace kelvora::server {

/// Starts and ends powerups, and carries out the deaths that weapons cause.
class Combat {
 public:
  Combat(Roster& roster, PendingCaptures& pending, Lives& lives) : roster_(roster), pending_(pending), lives_(lives) {}

  /// Handles a player's request to use a powerup.
  void activate(Player& player, std::string_view fields, Millis now);
  /// Applies the mover's weapons to the others, and theirs to the mover, along the way from `from`.
  void strikeOnTheWay(Player& mover, Point from, Millis now);
  /// Applies everybody's weapons to everybody else at their current positions.
  void strikeAll(Millis now);
  /// Tells a newcomer which powerups of the players run.
  void tellRunning(ClientId newcomer, Millis now);
  /// Tells newcomers when these powerups have run out. Clients time powerups from the message on, which came late.
  void tellEnded(Millis now);

 private:
  void strike(const std::vector<Hit>& hits, Millis now);
  void pulse(Player& owner, Millis now);
  /// Ends a running powerup early.
  void end(Player& player, PowerupSlot item, Millis now);

  struct Shown {
    ClientId newcomer;
    ClientId owner;
    PowerupSlot item;
    Millis until;
  };

  Roster& roster_;
  PendingCaptures& pending_;
  Lives& lives_;
  std::vector<Shown> shownLate_;
};

}  // namespace kelvora::server
