#pragma once

#include <deque>
#include <functional>

#include "base/vector.h"

namespace kelvora::modMain {

/// What glides along the positions that the server sends: an opponent or a particle.
struct Glider {
  Vector& position;             ///< world units
  Vector& velocity;             ///< world units per frame
  std::deque<Vector>& targets;  ///< the next one first
  bool& hasStep;                ///< `velocity` was worked out for the first target
  float speedLimit;             ///< world units per frame, see `glide`
};

/// True if the point is in the world, edges included.
bool isInWorld(Vector point);
/// Adds a target, within the bound of all queued positions.
void addTarget(std::deque<Vector>& targets, Vector point);
/// Moves one frame towards the first target, which there must be. Targets out of sight, near or very far are taken at
/// once; `reached` is called at each of them. True if a step was made and the position has changed by it.
bool glide(const Glider& glider, const std::function<void()>& reached);

}  // namespace kelvora::modMain
