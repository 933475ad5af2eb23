#pragma once

#include "base/vector.h"
#include "server/arena/plane.h"

namespace kelvora::server {

/// Moves a bot's ball by the clients' rules, as if steered with a mouse.
class Flight {
 public:
  explicit Flight(Vector start) : position_(start) {}

  /// Moves for one frame of 10 ms. `angle` is the desired direction in radians, which becomes the nearest one that a
  /// mouse can select. `throttle` is a fraction of full speed. True if a position report is due.
  bool step(double angle, double throttle, bool isAlive, bool hasTurbo);

  /// With the brakes on, the ball rolls to a stop and then reports nothing.
  void setBrakes(bool on) { brakes_ = on; }
  Vector position() const { return position_; }
  Point point() const { return {static_cast<double>(position_.x), static_cast<double>(position_.y)}; }

 private:
  Vector position_;
  Vector velocity_{};  // per frame
  bool brakes_ = true;
  int framesSinceReport_ = 0;
};

}  // namespace kelvora::server
