#include "core/glide.h"

#include "base/numbers.h"
#include "core/bounds.h"
#include "core/modMain.h"
#include "core/timeScale.h"
#include "core/view.h"
#include "protocol/rules.h"

namespace kelvora::modMain {

namespace {

constexpr float arrivalDistance = 500;
constexpr float jumpDistance = 10000;
constexpr double glideFrames = 7;

/// One axis of the step towards a target. Never 0.
float glideStep(float target, float from) {
  const float step = static_cast<float>((static_cast<double>(target) - from) / glideFrames);
  if (step != 0) return step;
  // Quirk Q-110: a step with a zero in it would be discarded in the next frame, so a glide along an axis drifts
  // sideways by 1.
  return target < from ? -1.0F : 1.0F;
}

void takeTarget(const Glider& glider, const std::function<void()>& reached) {
  glider.position = glider.targets.front();
  reached();
  glider.targets.pop_front();
  if (world.queuedPositions > 0) --world.queuedPositions;
}

}  // namespace

bool isInWorld(Vector point) {
  return point.x >= 0 && point.x <= rules::worldSize && point.y >= 0 && point.y <= rules::worldSize;
}

void addTarget(std::deque<Vector>& targets, Vector point) {
  if (world.queuedPositions >= maxQueuedPositions) return;
  targets.push_back(point);
  ++world.queuedPositions;
}

bool glide(const Glider& glider, const std::function<void()>& reached) {
  auto& [position, velocity, targets, hasStep, speedLimit] = glider;
  if (velocity.x == 0 || velocity.y == 0) hasStep = false;

  // Off screen nothing glides: all pending points are taken in this frame.
  while (!targets.empty() && !isOnScreen(targets.front())) {
    takeTarget(glider, reached);
    hasStep = false;
  }
  if (targets.empty()) return false;

  const float distance = getDistance(position, targets.front());
  if (distance < arrivalDistance) {
    takeTarget(glider, reached);
    hasStep = false;
    if (targets.empty()) return false;
  } else if (distance > jumpDistance) {
    // Quirk Q-115: a jump keeps the glide's step, which is then used for the next target.
    takeTarget(glider, reached);
    return false;
  }

  if (!hasStep) {
    const Vector target = targets.front();
    velocity = {glideStep(target.x, position.x), glideStep(target.y, position.y)};
    hasStep = true;
  }
  // Quirk Q-111: each frame scales the stored step itself, so a glide speeds up when the time scale is above 1.
  const double timeScale = getTimeScale();
  velocity = {toSingle(velocity.x * timeScale), toSingle(velocity.y * timeScale)};
  // Quirk Q-112: only rightward and downward steps are limited.
  if (velocity.x > speedLimit) velocity.x = speedLimit;
  if (velocity.y > speedLimit) velocity.y = speedLimit;
  position = {position.x + velocity.x, position.y + velocity.y};
  return true;
}

}  // namespace kelvora::modMain
