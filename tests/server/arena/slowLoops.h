#pragma once

#include <optional>
#include <span>
#include <vector>

#include "server/arena/geometry.h"

namespace kelvora::server {

/// The twin of enclosingLoops by which it is tested: each loop is a polygon of its own, in fractions, and winding is
/// counted by quarters. Coordinates go up to 2000: beyond that its fractions overflow.
std::vector<std::optional<std::size_t>> slowEnclosingLoops(std::span<const GridPoint> tail,
                                                           std::span<const GridPoint> places);

}  // namespace kelvora::server
