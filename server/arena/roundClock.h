#pragma once

#include <algorithm>

#include "base/millis.h"

namespace kelvora::server {

/// The clock of a round and of the intermission after it.
class RoundClock {
 public:
  RoundClock(Millis roundMs, Millis intermissionMs)
      : roundMs_(roundMs), intermissionMs_(intermissionMs), left_(roundMs) {}

  bool isRunning() const { return isRunning_; }
  /// Time left in the round or intermission; 0 once it is over.
  Millis left() const { return left_; }

  /// Advances the clock.
  void pass(Millis time) { left_ = std::max<Millis>(0, left_ - time); }
  /// Switches from the round to the intermission or back.
  void turnOver() {
    isRunning_ = !isRunning_;
    left_ = isRunning_ ? roundMs_ : intermissionMs_;
  }
  /// Starts a new round in any state.
  void beginAnew() {
    isRunning_ = true;
    left_ = roundMs_;
  }

 private:
  Millis roundMs_;
  Millis intermissionMs_;
  Millis left_;
  bool isRunning_ = true;
};

}  // namespace kelvora::server
