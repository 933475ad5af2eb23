#include "server/arena/geometry.h"

#include <algorithm>
#include <cmath>

namespace kelvora::server {

namespace {

__extension__ using Wide = __int128;

constexpr double gridPerUnit = 1024;

/// A point between grid points: x / scale, y / scale. The scale is positive.
struct FinePoint {
  Wide x = 0;
  Wide y = 0;
  std::int64_t scale = 1;
};

FinePoint toFinePoint(GridPoint point) { return {point.x, point.y, 1}; }

template <class Number>
int sign(Number value) {
  return (value > 0) - (value < 0);
}

/// 1 if the coordinate is greater than the grid's, -1 if it is less.
int compare(Wide coordinate, std::int64_t scale, std::int64_t grid) { return sign(coordinate - Wide{grid} * scale); }

/// Positive if a-b-c turns left, 0 if the three are collinear.
std::int64_t turn(GridPoint a, GridPoint b, GridPoint c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// For a point on the line a-b: true if it is between them or one of them.
bool isBetween(GridPoint a, GridPoint b, GridPoint point) {
  const auto [left, right] = std::minmax(a.x, b.x);
  const auto [low, high] = std::minmax(a.y, b.y);
  return left <= point.x && point.x <= right && low <= point.y && point.y <= high;
}

bool boxesMeet(GridPoint a, GridPoint b, GridPoint c, GridPoint d) {
  return std::max(a.x, b.x) >= std::min(c.x, d.x) && std::max(c.x, d.x) >= std::min(a.x, b.x) &&
         std::max(a.y, b.y) >= std::min(c.y, d.y) && std::max(c.y, d.y) >= std::min(a.y, b.y);
}

/// The point shared by a-b and c-d. If they share a stretch, the point nearest to c.
std::optional<FinePoint> sharedPoint(GridPoint a, GridPoint b, GridPoint c, GridPoint d) {
  if (!boxesMeet(a, b, c, d)) return std::nullopt;
  const std::int64_t turnC = turn(a, b, c);
  const std::int64_t turnD = turn(a, b, d);
  const std::int64_t turnA = turn(c, d, a);
  const std::int64_t turnB = turn(c, d, b);
  const bool isAShared = turnA == 0 && isBetween(c, d, a);
  const bool isBShared = turnB == 0 && isBetween(c, d, b);
  if (turnC == 0 && isBetween(a, b, c)) return toFinePoint(c);
  if (isAShared && isBShared) return toFinePoint(isBetween(c, b, a) ? a : b);
  if (isAShared) return toFinePoint(a);
  if (isBShared) return toFinePoint(b);
  if (turnD == 0 && isBetween(a, b, d)) return toFinePoint(d);
  if (sign(turnC) * sign(turnD) >= 0 || sign(turnA) * sign(turnB) >= 0) return std::nullopt;
  // They truly cross: b is on the other side of c-d than a, so the difference is not 0.
  std::int64_t part = turnA;
  std::int64_t whole = turnA - turnB;
  if (whole < 0) {
    part = -part;
    whole = -whole;
  }
  return FinePoint{Wide{a.x} * whole + Wide{b.x - a.x} * part, Wide{a.y} * whole + Wide{b.y - a.y} * part, whole};
}

/// The winding number of a path around a point, and whether the path goes through it.
struct Winding {
  int turns = 0;  // upward minus downward crossings of the ray from the point to the right
  bool isTouched = false;

  void operator+=(const Winding& other) {
    turns += other.turns;
    isTouched = isTouched || other.isTouched;
  }
};

/// The contribution of a step. `side` is positive if the point is to the left of the line upward. The heights compare
/// the step's ends with the point, and so do the other axis's values.
Winding windingOf(int fromHeight, int toHeight, int fromX, int toX, int side) {
  Winding winding;
  if (fromHeight <= 0 && toHeight > 0 && side > 0) winding.turns = 1;
  if (fromHeight > 0 && toHeight <= 0 && side < 0) winding.turns = -1;
  winding.isTouched = side == 0 && fromHeight * toHeight <= 0 && fromX * toX <= 0;
  return winding;
}

Winding step(GridPoint from, GridPoint to, GridPoint place) {
  return windingOf(sign(from.y - place.y), sign(to.y - place.y), sign(from.x - place.x), sign(to.x - place.x),
                   sign(turn(from, to, place)));
}

/// The same for a part of the line from-to that begins or ends at the shared point.
Winding partialStep(FinePoint from, FinePoint to, int side, GridPoint place) {
  return windingOf(compare(from.y, from.scale, place.y), compare(to.y, to.scale, place.y),
                   compare(from.x, from.scale, place.x), compare(to.x, to.scale, place.x), side);
}

}  // namespace

GridPoint toGrid(double x, double y) { return {std::llround(x * gridPerUnit), std::llround(y * gridPerUnit)}; }

std::vector<std::optional<std::size_t>> enclosingLoops(std::span<const GridPoint> tail,
                                                       std::span<const GridPoint> places) {
  std::vector<std::optional<std::size_t>> loops(places.size());
  if (tail.size() < 4 || places.empty()) return loops;
  const std::size_t last = tail.size() - 1;
  const GridPoint from = tail[last - 1];
  const GridPoint to = tail[last];
  if (from == to) return loops;
  std::vector<Winding> windings(places.size());  // from vertex i + 1 to the last but one
  for (std::size_t i = last - 2; i-- > 0;) {
    const auto shared = sharedPoint(from, to, tail[i], tail[i + 1]);
    for (std::size_t k = 0; k < places.size(); ++k) {
      const GridPoint place = places[k];
      windings[k] += step(tail[i + 1], tail[i + 2], place);
      if (!shared) continue;
      Winding loop = windings[k];
      loop += partialStep(toFinePoint(from), *shared, sign(turn(from, to, place)), place);
      loop += partialStep(*shared, toFinePoint(tail[i + 1]), sign(turn(tail[i], tail[i + 1], place)), place);
      if (loop.turns != 0 && !loop.isTouched) loops[k] = i + 1;
    }
  }
  return loops;
}

}  // namespace kelvora::server
