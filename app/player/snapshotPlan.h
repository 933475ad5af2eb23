#pragma once

#include <algorithm>

#include "base/millis.h"

namespace kelvora::player {

/// When to leave snapshots. They are farther apart from an hour on, and where windows are large: a snapshot has its own
/// copy of all pictures that have changed since. So their number and their pixels are bounded.
class SnapshotPlan {
 public:
  static constexpr double maxSnapshots = 100;
  static constexpr double maxPixels = 200'000'000;  ///< of all snapshots

  /// `interval` is the minimum time of the recording between two snapshots, in ms.
  explicit SnapshotPlan(Millis interval) : interval_(interval) {}

  bool isDue(Millis now) const { return now >= next_ && left_ > 0; }
  /// One is left now, with windows of so many pixels.
  void leave(Millis now, double pixels) {
    constexpr Millis share = 30;
    const double cost = std::max(1.0, pixels * maxSnapshots / maxPixels);
    left_ -= cost;
    next_ = now + static_cast<Millis>(static_cast<double>(std::max(interval_, now / share)) * cost);
  }

 private:
  Millis interval_;
  Millis next_ = 0;
  double left_ = maxSnapshots;  ///< in snapshots of small windows
};

}  // namespace kelvora::player
