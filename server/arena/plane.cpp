#include "server/arena/plane.h"

#include <algorithm>

namespace kelvora::server {

namespace {

double distanceToSegment(Point place, Point a, Point b) {
  const Point way = b - a;
  const double square = dot(way, way);
  const double part = square > 0 ? std::clamp(dot(place - a, way) / square, 0.0, 1.0) : 0;
  return length(place - (a + way * part));
}

/// True if each segment has the other's ends on both sides. Segments that only touch are found by their ends.
bool crossProperly(Point a, Point b, Point c, Point d) {
  return cross(b - a, c - a) * cross(b - a, d - a) < 0 && cross(d - c, a - c) * cross(d - c, b - c) < 0;
}

/// How many times `along` can be repeated before the axis leaves the world.
double stepsToEdge(double from, double along) {
  if (along > 0) return (worldSize - from) / along;
  if (along < 0) return -from / along;
  return HUGE_VAL;
}

}  // namespace

double segmentDistance(Point a, Point b, Point c, Point d) {
  if (crossProperly(a, b, c, d)) return 0;
  return std::min(
      {distanceToSegment(a, c, d), distanceToSegment(b, c, d), distanceToSegment(c, a, b), distanceToSegment(d, a, b)});
}

Point worldEdge(Point from, Point along) {
  const double steps = std::min(stepsToEdge(from.x, along.x), stepsToEdge(from.y, along.y));
  return from + along * steps;
}

}  // namespace kelvora::server
