#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace kelvora::server {

/// A place in exact whole numbers, 1024 to a world unit. Coordinates stay between 0 and 100000 world units, so that
/// a product of two differences fits 64 bits.
struct GridPoint {
  std::int64_t x = 0;
  std::int64_t y = 0;

  friend bool operator==(const GridPoint&, const GridPoint&) = default;
};

/// World units on the grid, to the nearest point.
GridPoint toGrid(double x, double y);

/// Looks for the loops that the last segment of a tail closes, and who is inside. The tail goes from the oldest vertex
/// to the newest. Wherever its last segment shares a point with an older one (of a stretch, the point nearest to the
/// older one's start), it closes a loop: from that point along the vertices after the older segment's start to the
/// last vertex but one, and straight back. The segment right before the last one closes none, as the two always share
/// a vertex, and one without length closes none. A place is inside a loop if the loop winds round it at all, in either
/// direction; a place on the loop itself is not inside.
///
/// For every place the result is the first vertex of the longest loop around it, an index of `tail`; nothing if there
/// is none. All comparisons are exact; the time is the product of the tail's length and the number of places.
std::vector<std::optional<std::size_t>> enclosingLoops(std::span<const GridPoint> tail,
                                                       std::span<const GridPoint> places);

}  // namespace kelvora::server
