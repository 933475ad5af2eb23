#pragma once

#include <cmath>

#include "server/arena/playerView.h"

namespace kelvora::server {

// Arithmetic of places and of the ways between them, in world units.

constexpr Place operator+(Place a, Place b) { return {a.x + b.x, a.y + b.y}; }
constexpr Place operator-(Place a, Place b) { return {a.x - b.x, a.y - b.y}; }
constexpr Place operator*(Place a, double factor) { return {a.x * factor, a.y * factor}; }

constexpr double dot(Place a, Place b) { return a.x * b.x + a.y * b.y; }
constexpr double cross(Place a, Place b) { return a.x * b.y - a.y * b.x; }
inline double length(Place a) { return std::hypot(a.x, a.y); }
/// The length that counts for the time a player needs: his speed is |x| + |y| in every direction.
inline double flightLength(Place a) { return std::fabs(a.x) + std::fabs(a.y); }

inline double angleOf(Place a) { return std::atan2(a.y, a.x); }
inline Place towards(double angle) { return {std::cos(angle), std::sin(angle)}; }
inline Place rotated(Place a, double angle) {
  const Place turn = towards(angle);
  return {a.x * turn.x - a.y * turn.y, a.x * turn.y + a.y * turn.x};
}
/// The same angle between -pi and pi.
inline double wrapped(double angle) { return std::remainder(angle, 2 * M_PI); }

}  // namespace kelvora::server
