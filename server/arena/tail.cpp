#include "server/arena/tail.h"

#include <algorithm>

namespace kelvora::server {

Spot spotOf(std::string_view x, std::string_view y, Vector read) {
  return {std::string(x), std::string(y), read, toGrid(static_cast<double>(read.x), static_cast<double>(read.y))};
}

bool Tail::lay(const Spot& spot, Millis now, bool isCharged, Millis extendedUntil) {
  if (!vertices_.empty() && vertices_.back().spot.read == spot.read) return false;
  if (vertices_.size() == maxVertices) dropOldest(1);
  vertices_.push_back({spot, std::max(now, extendedUntil) + vertexLife, isCharged});
  points_.push_back(spot.grid);
  return true;
}

void Tail::extend(Millis until) {
  for (Vertex& vertex : vertices_) vertex.endsAt = std::max(vertex.endsAt, until);
}

void Tail::prune(Millis now) {
  // Expiry times never decrease along the tail: later vertices don't expire earlier.
  const auto alive =
      std::find_if(vertices_.begin(), vertices_.end(), [&](const Vertex& vertex) { return vertex.endsAt > now; });
  dropOldest(static_cast<std::size_t>(alive - vertices_.begin()));
}

void Tail::clear() {
  vertices_.clear();
  points_.clear();
}

void Tail::dropOldest(std::size_t count) {
  vertices_.erase(vertices_.begin(), vertices_.begin() + static_cast<std::ptrdiff_t>(count));
  points_.erase(points_.begin(), points_.begin() + static_cast<std::ptrdiff_t>(count));
}

}  // namespace kelvora::server
