#pragma once

#include <string_view>

#include "server/arena/combat.h"
#include "server/arena/lives.h"
#include "server/arena/pendingCaptures.h"
#include "server/arena/roster.h"

namespace kelvora::server {

/// How a report has moved a player.
enum class [[nodiscard]] Move{refused, step, jump};

/// Moves a player to a reported spot. Refuses a spot out of reach at `speedFactor` times the design speed (0 for no
/// limit). After a second without a valid report, such a spot counts as a jump instead, and a new tail starts there.
Move moveTo(Player& player, const Spot& spot, double speedFactor, Millis now);

/// Handles position reports: moves players, finds captures by their tails, and applies weapons along the way.
class Movement {
 public:
  Movement(Roster& roster, const PendingCaptures& pending, Lives& lives, Combat& combat, double speedFactor)
      : roster_(roster), pending_(pending), lives_(lives), combat_(combat), speedFactor_(speedFactor) {}

  /// Handles a player's position report. Drops it if it is invalid, too early or out of reach.
  void report(Player& player, std::string_view fields, Millis now);

 private:
  void captureEnclosed(Player& winner, Millis now);

  Roster& roster_;
  const PendingCaptures& pending_;
  Lives& lives_;
  Combat& combat_;
  const double speedFactor_;
};

}  // namespace kelvora::server
