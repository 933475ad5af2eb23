#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvora::server {

/// A position in exact whole numbers, 1024 per world unit. Coordinates are 0 to 100000 world units, so that the product
/// of two differences fits 64 bits.
struct GridPoint {
  std::int64_t x = 0;
  std::int64_t y = 0;

  friend bool operator==(const GridPoint&, const GridPoint&) = default;
};

/// World units rounded to the nearest grid point.
GridPoint toGrid(double x, double y);

/// Finds the loops closed by the last segment of a tail, and the places inside them. The tail goes from the oldest
/// vertex to the newest. The last segment closes a loop with each older segment that shares a point with it. The loop
/// starts at the shared point, follows the tail to the last vertex but one, and goes straight back. If the two segments
/// overlap, the shared point is the one nearest to the older segment's start. The segment right before the last one
/// closes no loop, because the two always share a vertex. Neither does a segment without length. A place is inside a
/// loop if the loop winds around it in either direction. A place on the loop itself is not inside.
///
/// Returns, for every place, the first vertex of the longest loop around it as an index of `tail`, or nothing. All
/// comparisons are exact. The time is proportional to the tail's length times the number of places.
std::vector<std::optional<std::size_t>> enclosingLoops(std::span<const GridPoint> tail,
                                                       std::span<const GridPoint> places);

}  // namespace kelvora::server
