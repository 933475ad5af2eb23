#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/millis.h"
#include "base/vector.h"
#include "protocol/rules.h"
#include "server/arena/geometry.h"
#include "server/arena/plane.h"

namespace kelvora::server {

/// A reported position: its coordinates as text, as clients read them, and on the grid.
struct Spot {
  std::string x;
  std::string y;
  Vector read;
  GridPoint grid;

  /// In world units.
  Point point() const { return {static_cast<double>(read.x), static_cast<double>(read.y)}; }
};

/// `x` and `y` are the texts of `read`.
Spot spotOf(std::string_view x, std::string_view y, Vector read);

/// A living player's tail as the rules see it: the reported spots, oldest first, for about as long as clients show
/// them.
class Tail {
 public:
  /// Clients expire a vertex 2.0 to 2.1 seconds after laying it.
  static constexpr Millis vertexLife = rules::vertexLifetime;
  /// More than anybody lays without a permanent Extra Long Tail.
  static constexpr std::size_t maxVertices = 4'000;

  struct Vertex {
    Spot spot;
    Millis endsAt = 0;
    bool isCharged = false;  ///< together with the segment from the previous vertex
  };

  /// Adds a spot. False, without any change, if it equals the last one. `extendedUntil` is the end of the running Extra
  /// Long Tail: nothing expires before, and vertices laid under it start their lifetime then.
  bool lay(const Spot& spot, Millis now, bool isCharged, Millis extendedUntil);
  /// Called when an Extra Long Tail starts: nothing expires before its end.
  void extend(Millis until);
  /// Removes expired vertices.
  void prune(Millis now);
  void clear();

  /// Oldest first. Valid until the next change.
  std::span<const Vertex> vertices() const { return vertices_; }
  /// The same vertices on the grid.
  std::span<const GridPoint> points() const { return points_; }

 private:
  void dropOldest(std::size_t count);

  std::vector<Vertex> vertices_;
  std::vector<GridPoint> points_;
};

}  // namespace kelvora::server
