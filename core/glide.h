#pragma once

#include <deque>
#include <functional>

#include "base/vector.h"

namespace kelvora::modMain {

/// Anything that glides along the positions sent by the server: an opponent or a particle.
struct Glider {
  Vector& position;             ///< world units
  Vector& velocity;             ///< world units per frame
  std::deque<Vector>& targets;  ///< next target first
  bool& hasStep;                ///< `velocity` is set for the first target
  float speedLimit;             ///< world units per frame, see `glide`
};

/// True if the point is in the world, including its edges.
bool isInWorld(Vector point);
/// Adds a target, unless the limit of all queued positions is reached.
void addTarget(std::deque<Vector>& targets, Vector point);
/// Moves one frame towards the first target; there must be one. A target that is off screen, near or very far is
/// reached at once. `reached` is called for each one. Returns true if a step changed the position.
bool glide(const Glider& glider, const std::function<void()>& reached);

}  // namespace kelvora::modMain
