#pragma once

#include "base/vector.h"
#include "server/arena/plane.h"

namespace kelvora::server {

/// World units that a player moves in a frame of 10 ms at full speed, both axes together.
inline constexpr double topStep = 300;

/// The ball of a bot: it moves by the rules that the clients keep to, as if somebody steered it with a mouse.
class Flight {
 public:
  explicit Flight(Vector start) : position_(start) {}

  /// One frame of 10 ms. `angle` is the direction to fly in, in radians; it becomes the nearest one that a mouse can
  /// choose. `throttle` is a part of full speed. True if it is time to report the position.
  bool step(double angle, double throttle, bool isAlive, bool hasTurbo);

  /// A player with the brakes on rolls out and then stands; he reports nothing once he does.
  void setBrakes(bool on) { brakes_ = on; }
  bool hasBrakes() const { return brakes_; }
  Vector position() const { return position_; }
  Point point() const { return {static_cast<double>(position_.x), static_cast<double>(position_.y)}; }

 private:
  Vector position_;
  Vector velocity_{};  // of one frame
  bool brakes_ = true;
  int framesSinceReport_ = 0;
};

}  // namespace kelvora::server
