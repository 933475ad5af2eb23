#pragma once

#include <optional>
#include <span>

#include "protocol/rules.h"
#include "server/arena/plane.h"
#include "server/bots/botView.h"

namespace kelvora::server {

/// Minimum lifetime of a tail in ms. Its points live a little longer.
inline constexpr double tailLife = 1'900;
/// Milliseconds between two points of a tail.
inline constexpr double tailStep = rules::reportInterval;

/// Where a player will be `ms` after being seen, assuming a straight line or, with `turns`, the circle that they are
/// flying. The result is inside the world.
Point foreseen(const Seen& player, double ms, bool turns);

/// A straight flight that crosses the tail and so closes a loop.
struct Closing {
  std::size_t vertex = 0;  ///< where the loop begins in the tail
  Point gate;              ///< where to cross the tail
  double ms = 0;           ///< flight time to the gate
};

/// The earliest closing of a loop around `prey` that the tail's owner can reach from `head`. `speed` is in world units
/// per ms, `earliest` and `latest` in ms. The points of the tail are `tailStep` apart and live for `tailLife`, or for
/// ever if `isExtended`.
std::optional<Closing> soonestClosing(std::span<const Point> tail, Point head, double speed, Point prey,
                                      double earliest, double latest, bool isExtended);

/// True if `point` is inside the loop of a closing.
bool isInside(std::span<const Point> tail, Point head, const Closing& closing, Point point);

/// True if the segments a-b and c-d cross.
bool segmentsCross(Point a, Point b, Point c, Point d);

}  // namespace kelvora::server
