#pragma once

#include <algorithm>

#include "base/millis.h"

namespace kelvora::server {

/// Limits how far a player moves: at most one second's worth at once, and at most `speed` on average. Distances are
/// world units, the sum of both axes, as the game measures speed.
class SpeedLimit {
 public:
  static constexpr Millis window = 1'000;

  /// True if the player may move this far now. `speed` is in world units per ms. A refused distance doesn't count.
  bool allows(double distance, double speed, Millis now) {
    const double maximum = speed * static_cast<double>(window);
    left_ = isFresh_ ? maximum : std::min(maximum, left_ + speed * static_cast<double>(now - last_));
    isFresh_ = false;
    last_ = now;
    if (distance > left_) return false;
    left_ -= distance;
    return true;
  }

 private:
  bool isFresh_ = true;
  double left_ = 0;
  Millis last_ = 0;
};

}  // namespace kelvora::server
