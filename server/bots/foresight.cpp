#include "server/bots/foresight.h"

#include <algorithm>

namespace kelvora::server {

namespace {

/// True if a ray from `point` to the right meets the segment from `a` to `b`.
bool rayMeets(Point point, Point a, Point b) {
  if ((a.y > point.y) == (b.y > point.y)) return false;
  return point.x < a.x + (point.y - a.y) / (b.y - a.y) * (b.x - a.x);
}

double inTheWorld(double coordinate) {
  if (coordinate < 0) return -coordinate;
  if (coordinate > worldSize) return 2 * worldSize - coordinate;
  return coordinate;
}

}  // namespace

Point foreseen(const Seen& player, double ms, bool turns) {
  Point way = player.velocity * ms;
  const double turn = player.turn * ms;
  if (turns && std::fabs(turn) > 0.05) {
    // The chord of the circle: the arc's length times sin(turn / 2) / (turn / 2), rotated by half the turn.
    way = rotated(way, turn / 2) * (std::sin(turn / 2) / (turn / 2));
  }
  const Point place = player.position + way;
  return {std::clamp(inTheWorld(place.x), 0.0, worldSize), std::clamp(inTheWorld(place.y), 0.0, worldSize)};
}

std::optional<Closing> soonestClosing(std::span<const Point> tail, Point head, double speed, Point prey,
                                      double earliest, double latest, bool isExtended) {
  if (tail.size() < 4 || speed <= 0) return std::nullopt;
  std::optional<Closing> best;
  bool isOdd = rayMeets(prey, head, tail.back());
  for (std::size_t i = tail.size() - 1; i-- > 0;) {
    isOdd ^= rayMeets(prey, tail[i], tail[i + 1]);
    const double age = static_cast<double>(tail.size() - 1 - i) * tailStep;
    const double ms = flightLength(tail[i] - head) / speed;
    if (!isExtended && age + ms > tailLife) break;
    // Excludes turns on the spot.
    if (i + 3 > tail.size() || ms < earliest || ms > latest || (best && ms >= best->ms)) continue;
    if (isOdd != rayMeets(prey, tail[i], head)) best = Closing{i, tail[i], ms};
  }
  if (best && best->vertex > 0) {
    // The middle of the segment before the vertex, so that the flight crosses the tail instead of narrowly missing it.
    best->gate = (tail[best->vertex] + tail[best->vertex - 1]) * 0.5;
  }
  return best;
}

bool isInside(std::span<const Point> tail, Point head, const Closing& closing, Point point) {
  bool isOdd = rayMeets(point, tail.back(), head) != rayMeets(point, head, tail[closing.vertex]);
  for (std::size_t i = closing.vertex; i + 1 < tail.size(); ++i) isOdd ^= rayMeets(point, tail[i], tail[i + 1]);
  return isOdd;
}

bool segmentsCross(Point a, Point b, Point c, Point d) {
  const Point ab = b - a;
  const Point cd = d - c;
  return (cross(ab, c - a) > 0) != (cross(ab, d - a) > 0) && (cross(cd, a - c) > 0) != (cross(cd, b - c) > 0);
}

}  // namespace kelvora::server
