#include <algorithm>
#include <cmath>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "core/modMain.h"
#include "core/timeScale.h"
#include "core/view.h"
#include "network/send.h"
#include "protocol/rules.h"
#include "simulation/clsPlayer.h"
#include "simulation/survival.h"

namespace kelvora {

namespace {

// Quirk Q-237: pi with five decimals, which takes up to 0.0002 units off a velocity.
constexpr double pi = 3.14159;

float scaled(float component, double factor) { return static_cast<float>(component * factor); }

/// One axis of the velocity, one step closer to 0 but never past it.
float braked(float component, double step) {
  if (component < 0) return std::min(static_cast<float>(component + step), 0.0F);
  if (component > 0) return std::max(static_cast<float>(component - step), 0.0F);
  return component;
}

/// The mouse's distance from the canvas's centre as a fraction of full speed, at most 1.
float throttle() {
  const Vector centre = modMain::getCanvasCentre();
  // Quirk Q-306: a canvas without height is a fault once the player flies.
  if (centre.y == 0) throw RuntimeFault("Division by zero");
  // Quirk Q-096: half the canvas's height is the reach on both axes, so full speed takes the same mouse distance in
  // every direction, however wide the canvas is.
  return std::min(modMain::getDistance(centre, modMain::world.mousePos) / centre.y, 1.0F);
}

/// Sets the velocity of one frame at time scale 1 from the bearing found by the last paint. An invalid bearing, as
/// before the first paint, changes nothing.
void steer(Vector& velocity, float speed) {
  const int angle = modMain::world.steerAngle;
  const float radians = static_cast<float>((pi / 180) * (angle % 45));
  const float tangent = static_cast<float>(std::tan(static_cast<double>(radians)));
  // Quirk Q-090: the speed is |x| + |y| instead of using sine and cosine, so the ball is faster along the axes than on
  // a diagonal.
  float across;
  if (angle >= 0 && angle < 45) {
    across = static_cast<float>(tangent * 0.5 * speed);
  } else if (angle >= 45 && angle < 90) {
    across = static_cast<float>((tangent + 1.0) * speed * 0.5);
  } else if (angle == 90) {  // no bearing is that large
    across = speed;
  } else {
    return;
  }
  const float along = speed - across;
  // Quirk Q-092: the previous frame's paint found the quadrant. In the first frame it is 0, and nothing steers.
  switch (modMain::world.steerQuadrant) {
    case 1:
      velocity = {across, -along};
      break;
    case 2:
      velocity = {-across, -along};
      break;
    case 3:
      velocity = {-across, along};
      break;
    case 4:
      velocity = {across, along};
      break;
    default:
      break;
  }
}

void soundBounce(Vector point) {
  if (modMain::isOnScreen(point)) soundMan::playSound(soundMan::Sound::Bounce);
}

/// Keeps one axis of a point inside the world, with a sound for each edge crossed. The bounds themselves are inside.
void bounce(const Vector& point, float& coordinate, float& speed) {
  // Quirk Q-094: a player who crosses the edge lands 1000 units inside it, however small the step.
  if (coordinate < 0) {
    soundBounce(point);
    speed = std::fabs(speed);
    coordinate = rules::wallInset;
  }
  if (coordinate > rules::worldSize) {
    soundBounce(point);
    speed = -std::fabs(speed);
    coordinate = rules::worldSize - rules::wallInset;
  }
}

}  // namespace

void clsPlayer::move() {
  const double timeScale = modMain::getTimeScale();
  if (breaksOn) {
    // Quirk Q-095: a player at rest under the brakes skips the rest of the frame, including the report.
    if (velocity == Vector{}) return;
    velocity = {braked(velocity.x, rules::brakeRate * timeScale), braked(velocity.y, rules::brakeRate * timeScale)};
  }
  lastPosition = position;
  // Quirk Q-154: a player at rest under the brakes has returned above, so nothing can hit them.
  if (modMain::isSurvivalMode()) modMain::checkSurvival();

  const bool turbo = powerups[turboSlot].active;
  float topSpeed = throttle() * speed;
  // Quirk Q-097: a captured player continues as a ghost, at double speed.
  if (!alive) topSpeed += topSpeed;
  if (turbo) topSpeed = scaled(topSpeed, rules::turboFactor);

  if (!breaksOn) {
    steer(velocity, topSpeed);
    velocity = {scaled(velocity.x, timeScale), scaled(velocity.y, timeScale)};
  }
  // Quirk Q-093: the limit applies to one frame's displacement, so a slow machine's frame moves the player no farther
  // than a fast one's. Turbo is exempt.
  if (!turbo) {
    velocity = {std::clamp(velocity.x, -rules::axisClamp, rules::axisClamp),
                std::clamp(velocity.y, -rules::axisClamp, rules::axisClamp)};
  }

  Vector next{position.x + velocity.x, position.y + velocity.y};
  bounce(next, next.x, velocity.x);
  bounce(next, next.y, velocity.y);
  position = next;

  if (reportCounter < positionReportInterval) {
    reportCounter += 1;
  } else {
    sendPosition();
    reportCounter = 0;
  }
}

void clsPlayer::sendPosition() {
  if (awaitingFirstPosition) return;
  netMan::sendMessage<wire::msgPositionReport>(position.x, position.y);
}

}  // namespace kelvora
