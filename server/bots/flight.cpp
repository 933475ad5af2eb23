#include "server/bots/flight.h"

#include <algorithm>

#include "protocol/rules.h"

namespace kelvora::server {

namespace {

constexpr auto brakeRate = static_cast<float>(rules::brakeRate);
constexpr double degree = pi / 180;
constexpr double steepest = 88;  // the bearing of a mouse straight to the side, on a scale of 350 to the circle

/// The velocity of one frame. A mouse selects a whole number from 0 to 88 in each quadrant, which determines the
/// horizontal axis's share of the speed. This finds the number for a given share.
Vector steered(double angle, double speed) {
  const Point way = towards(angle);
  const double share = std::fabs(way.x) / flightLength(way);
  const double exact = share < 0.5 ? std::atan(2 * share) / degree : 45 + std::atan(2 * share - 1) / degree;
  const double bearing = std::min(std::round(exact), steepest);
  const double across =
      bearing < 45 ? std::tan(bearing * degree) * 0.5 * speed : (std::tan((bearing - 45) * degree) + 1) * 0.5 * speed;
  return {static_cast<float>(std::copysign(across, way.x)), static_cast<float>(std::copysign(speed - across, way.y))};
}

float braked(float component) {
  return component < 0 ? std::min(component + brakeRate, 0.0F) : std::max(component - brakeRate, 0.0F);
}

void bounce(float& coordinate, float& speed) {
  if (coordinate < 0) {
    speed = std::fabs(speed);
    coordinate = rules::wallInset;
  } else if (coordinate > rules::worldSize) {
    speed = -std::fabs(speed);
    coordinate = rules::worldSize - rules::wallInset;
  }
}

}  // namespace

bool Flight::step(double angle, double throttle, bool isAlive, bool hasTurbo) {
  if (brakes_) {
    if (velocity_ == Vector{}) return false;
    velocity_ = {braked(velocity_.x), braked(velocity_.y)};
  } else {
    velocity_ = steered(angle, std::clamp(throttle, 0.0, 1.0) * rules::topStep * (isAlive ? 1 : rules::ghostFactor) *
                                   (hasTurbo ? rules::turboFactor : 1));
  }
  if (!hasTurbo) {
    velocity_ = {std::clamp(velocity_.x, -rules::axisClamp, rules::axisClamp),
                 std::clamp(velocity_.y, -rules::axisClamp, rules::axisClamp)};
  }
  position_ = {position_.x + velocity_.x, position_.y + velocity_.y};
  bounce(position_.x, velocity_.x);
  bounce(position_.y, velocity_.y);
  if (framesSinceReport_ < rules::framesPerReport - 1) {
    ++framesSinceReport_;
    return false;
  }
  framesSinceReport_ = 0;
  return true;
}

}  // namespace kelvora::server
