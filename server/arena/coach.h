#pragma once

#include <string>

#include "server/arena/arenaRules.h"
#include "server/arena/roster.h"
#include "server/arena/rounds.h"

namespace kelvora::server {

/// Tells newcomers what to do, in private lines from the server: each line once, when it is needed. People who capture
/// somebody before they have been told how are left alone. No line has more than 90 bytes: the game would break it in
/// two.
class Coach {
 public:
  static constexpr Millis brakesAfter = 4'000;  ///< time without a movement
  static constexpr Millis pause = 4'000;        ///< minimum time between two lines
  static constexpr double nearby = 6'000;       ///< world units to somebody who is on the screen
  static constexpr std::int64_t storeFunds = 20;

  Coach(Roster& roster, const Rounds& rounds, const ArenaRules& rules)
      : roster_(roster), rounds_(rounds), rules_(rules) {}

  void tick(Millis now);

 private:
  /// The line that the player needs now; empty if there is none.
  std::string lineFor(Player& player, Millis now) const;
  std::string captureText() const;
  const Player* nearestOpponent(const Player& player) const;

  Roster& roster_;
  const Rounds& rounds_;
  const ArenaRules rules_;
};

/// "to your right", "below you to the right", "below you" and so on, as seen on the screen.
std::string directionOf(Point way);

}  // namespace kelvora::server
