#pragma once

#include <cstdint>
#include <vector>

#include "base/millis.h"
#include "server/arena/tail.h"

namespace kelvora::server {

/// Captures that clients know of but haven't carried out yet: they wait for the named vertex of the winner's tail to
/// expire. A client identifies a capture by that vertex's coordinates alone. When it carries one out, it forgets all
/// other captures of the same winner. So while a capture is pending, its winner names no other vertex and nobody else
/// names the same coordinates. Its loser doesn't respawn, and nobody is told that either of the two has left.
class PendingCaptures {
 public:
  /// A vertex expires 2.1 seconds after a client has laid it. A lagging client that hasn't laid it yet carries the
  /// capture out at once. So 2.1 seconds after the capture it has been carried out everywhere. The rest is for messages
  /// in transit and slow frames.
  static constexpr Millis landingTime = 3'000;

  /// `extendedUntil` is the end of the winner's running Extra Long Tail, under which nothing expires.
  void add(std::int16_t winner, std::int16_t loser, const Spot& vertex, Millis now, Millis extendedUntil);
  /// Called when the winner's Extra Long Tail starts. It delays a capture only once: between two such powerups every
  /// client has a frame in which the tail ages.
  void extend(std::int16_t winner, Millis until);
  /// Removes captures that have been carried out.
  void prune(Millis now);

  /// The vertex named by the winner's pending captures; null if there are none.
  const Spot* vertexOf(std::int16_t winner) const;
  /// True if another winner's pending captures name this place.
  bool isNamedByAnother(std::int16_t winner, Vector place) const;
  /// True if a pending capture has this winner or loser.
  bool involves(std::int16_t node) const;
  /// The earliest time for the loser's respawn; 0 if nothing is pending.
  Millis landsAt(std::int16_t loser) const;

 private:
  struct Capture {
    std::int16_t winner;
    std::int16_t loser;
    Spot vertex;
    Millis landsAt;
    bool isExtended = false;
  };
  std::vector<Capture> captures_;
};

}  // namespace kelvora::server
