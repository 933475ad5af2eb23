#pragma once

#include "server/arena/plane.h"

namespace kelvora::server {

/// World units. The ball's picture is 49 pixels wide, of 15 units each.
inline constexpr double ballRadius = 49 * 15 / 2.0;
/// Reach of a pulse; the canvas as it is designed shows 4560 units above and below its player.
inline constexpr double pulseRadius = 4'500;

/// The shortest distance between the ways a-b and c-d; either may be a single place.
double distanceOfWays(Point a, Point b, Point c, Point d);
/// Where a beam leaves the world that starts at `from` and runs along `along`, which is not zero on both axes.
Point worldEdge(Point from, Point along);

}  // namespace kelvora::server
