#pragma once

#include <string>

#include "server/arena/arenaRules.h"
#include "server/arena/economy.h"
#include "server/arena/roster.h"
#include "server/arena/roundClock.h"

namespace kelvora::server {

/// "1 second" or "3 seconds", rounded up.
std::string secondsText(Millis time);

/// Rounds and the intermissions between them. The clock only runs while people are in.
class Rounds {
 public:
  Rounds(Roster& roster, Economy& economy, const ArenaRules& rules);

  /// False in an intermission, when everybody is dead.
  bool isRunning() const { return clock_.isRunning(); }
  /// How many rounds have begun.
  int count() const { return count_; }
  /// Time left in the round or intermission.
  Millis left() const { return clock_.left(); }

  /// Call this before a newcomer joins. The first player starts a new round.
  void prepareFor(ClientId newcomer, Millis now);
  /// Tells a newcomer who has joined in an intermission that they are dead until the next round.
  void explainIntermission(const Player& newcomer) const;
  /// Ends the round once somebody has reached the capture goal.
  void endIfWon();
  /// Ends the round or intermission once its time is up.
  void passTime(Millis now);
  /// Ends a running round as if its time were up.
  void endNow();
  /// Begins a new round. A running one ends without a winner.
  void restart();

 private:
  void begin();
  void welcome();
  void end();
  /// Kills everybody and tells them why. The clock must have been changed before.
  void stop(const std::string& text);
  /// The player with the most captures, or the first of equals. Null if nobody has captured anybody.
  const Player* winner() const;
  /// Tells a client that its player is dead.
  void sendDead(const Player& player) const;

  Roster& roster_;
  Economy& economy_;
  const int captureGoal_;
  const int survivalCredits_;
  RoundClock clock_;
  Millis clockSet_ = 0;
  int count_ = 0;
};

}  // namespace kelvora::server
