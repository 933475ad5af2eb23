#pragma once

#include "server/arena/plane.h"

namespace kelvora::server {

/// Range of a pulse, in world units. At its design size, the canvas shows 4560 units above and below its player.
inline constexpr double pulseRadius = 4'500;

/// The minimum distance between the segments a-b and c-d. Either may be a single point.
double segmentDistance(Point a, Point b, Point c, Point d);
/// The point on the world's edge where a beam from `from` along `along` leaves the world. `along` must not be zero on
/// both axes.
Point worldEdge(Point from, Point along);

}  // namespace kelvora::server
