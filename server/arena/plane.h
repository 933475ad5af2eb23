#pragma once

#include <cmath>
#include <numbers>

#include "protocol/rules.h"

namespace kelvora::server {

inline constexpr double worldSize = rules::worldSize;
inline constexpr double pi = std::numbers::pi;

/// A position or displacement in world units.
struct Point {
  double x = 0;
  double y = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

constexpr Point operator+(Point a, Point b) { return {a.x + b.x, a.y + b.y}; }
constexpr Point operator-(Point a, Point b) { return {a.x - b.x, a.y - b.y}; }
constexpr Point operator*(Point a, double factor) { return {a.x * factor, a.y * factor}; }

constexpr double dot(Point a, Point b) { return a.x * b.x + a.y * b.y; }
constexpr double cross(Point a, Point b) { return a.x * b.y - a.y * b.x; }
inline double length(Point a) { return std::hypot(a.x, a.y); }
/// The length that counts for flight times, because speed is |x| + |y| in every direction.
inline double flightLength(Point a) { return std::fabs(a.x) + std::fabs(a.y); }

// Angles are in radians, from the x axis towards the y axis.
inline double angleOf(Point a) { return std::atan2(a.y, a.x); }
/// The unit vector in that direction.
inline Point towards(double angle) { return {std::cos(angle), std::sin(angle)}; }
inline Point rotated(Point a, double angle) {
  const Point turn = towards(angle);
  return {a.x * turn.x - a.y * turn.y, a.x * turn.y + a.y * turn.x};
}
/// The same angle, between -pi and pi.
inline double wrapped(double angle) { return std::remainder(angle, 2 * pi); }

/// The minimum distance between the segments a-b and c-d. Either may be a single point.
double segmentDistance(Point a, Point b, Point c, Point d);

/// The point on the world's edge where a beam from `from` along `along` leaves the world. `along` must not be zero on
/// both axes.
Point worldEdge(Point from, Point along);

}  // namespace kelvora::server
