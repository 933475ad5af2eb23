#pragma once

#include <algorithm>

#include "base/millis.h"

namespace kelvora::server {

/// How far a player may go: a second's worth at once, and on average what the speed gives. Distances are in world
/// units, both axes together, as the game measures speed.
class SpeedLimit {
 public:
  /// Full speed of a living player without turbo, at the design pace.
  static constexpr double designSpeed = 30;  // world units a ms
  static constexpr Millis window = 1'000;

  /// `speed` in world units a ms. A refused distance uses nothing up.
  bool allows(double distance, double speed, Millis now) {
    const double most = speed * static_cast<double>(window);
    left_ = isFresh_ ? most : std::min(most, left_ + speed * static_cast<double>(now - last_));
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
