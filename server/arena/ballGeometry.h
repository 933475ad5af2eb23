#pragma once

#include "server/arena/plane.h"

namespace kelvora::server {

/// World units. The ball's picture is 49 pixels wide, 15 units each.
inline constexpr double ballRadius = 49 * 15 / 2.0;
/// Range of a pulse. At its design size, the canvas shows 4560 units above and below its player.
inline constexpr double pulseRadius = 4'500;

/// The minimum distance between the segments a-b and c-d. Either may be a single point.
double segmentDistance(Point a, Point b, Point c, Point d);
/// The point on the world's edge where a beam from `from` along `along` leaves the world. `along` must not be zero on
/// both axes.
Point worldEdge(Point from, Point along);

}  // namespace kelvora::server
