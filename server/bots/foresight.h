#pragma once

#include <optional>
#include <span>

#include "server/arena/plane.h"
#include "server/bots/botView.h"

namespace kelvora::server {

/// World units per ms at full speed, both axes together.
inline constexpr double topSpeed = 30;
/// The ms for which a tail can be counted on; its points last a little longer.
inline constexpr double tailLife = 1'900;
/// The ms between two points of a tail.
inline constexpr double tailStep = 40;

/// Where a player is some ms after he was seen, if he goes on as he does: in a straight line or, with `turns`, in the
/// circle that he flies. Nobody leaves the world.
Point foreseen(const Seen& player, double ms, bool turns);

/// A straight way to cross a tail and so to close a loop.
struct Closing {
  std::size_t vertex = 0;  ///< the loop begins here in the tail
  Point gate;              ///< where the tail is to be crossed
  double ms = 0;           ///< until then
};

/// The soonest closing of a loop with `prey` inside that the owner of the tail can reach from `head`, at a speed in
/// world units per ms, no sooner than `earliest` and no later than `latest` (ms). The points of the tail are `tailStep`
/// apart and live for `tailLife`, without end if `isExtended`.
std::optional<Closing> soonestClosing(std::span<const Point> tail, Point head, double speed, Point prey,
                                      double earliest, double latest, bool isExtended);

/// Whether `point` is inside the loop that a closing makes.
bool isInside(std::span<const Point> tail, Point head, const Closing& closing, Point point);

/// Whether the ways a-b and c-d meet.
bool cross(Point a, Point b, Point c, Point d);

}  // namespace kelvora::server
