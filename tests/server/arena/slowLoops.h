#pragma once

#include <optional>
#include <span>
#include <vector>

#include "server/arena/geometry.h"

namespace kelvora::server {

/// A slow twin of enclosingLoops for comparison: each loop is a separate polygon in fractions, and winding is counted
/// in quarters. Coordinates go up to 2000, beyond which the fractions overflow.
std::vector<std::optional<std::size_t>> slowEnclosingLoops(std::span<const GridPoint> tail,
                                                           std::span<const GridPoint> places);

}  // namespace kelvora::server
