#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/millis.h"
#include "base/vector.h"
#include "server/arena/geometry.h"
#include "server/arena/plane.h"

namespace kelvora::server {

/// A reported place: its coordinates as they came in, as clients read them from that, and on the grid.
struct Spot {
  std::string x;
  std::string y;
  Vector read;
  GridPoint grid;

  /// World units.
  Point point() const { return {static_cast<double>(read.x), static_cast<double>(read.y)}; }
};

Spot spotOf(std::string_view x, std::string_view y, Vector read);

/// The tail of a living player as it counts in the rules: the spots that he reported, the oldest first, for about as
/// long as clients show them.
class Tail {
 public:
  /// Clients end a vertex between 2.0 and 2.1 seconds after they have laid it.
  static constexpr Millis vertexLife = 2'000;
  /// More than anybody lays unless he keeps an extended tail running all the time.
  static constexpr std::size_t mostVertices = 4'000;

  struct Vertex {
    Spot spot;
    Millis endsAt = 0;
    bool isCharged = false;  ///< so is the segment from the vertex before it
  };

  /// A spot like the last one is left out; the result tells. `extendedUntil` is the end of the running extended tail,
  /// before which nothing ends and from which on what has been laid meanwhile has a life of its own.
  bool lay(const Spot& spot, Millis now, bool isCharged, Millis extendedUntil);
  /// An extended tail begins: nothing ends before its end.
  void extend(Millis until);
  /// Ends what is due.
  void prune(Millis now);
  void clear();

  std::span<const Vertex> vertices() const { return vertices_; }
  /// The same vertices on the grid.
  std::span<const GridPoint> points() const { return points_; }

 private:
  void dropOldest(std::size_t count);

  std::vector<Vertex> vertices_;
  std::vector<GridPoint> points_;
};

}  // namespace kelvora::server
