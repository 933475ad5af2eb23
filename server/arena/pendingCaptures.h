#pragma once

#include <cstdint>
#include <vector>

#include "base/millis.h"
#include "server/arena/tail.h"

namespace kelvora::server {

/// The captures that clients have been told of and have not carried out yet: they wait for the named vertex of the
/// winner's tail to end. When that happens a client forgets all the winner's other captures, and it keeps them apart
/// by the vertex's coordinates alone. So as long as one waits, its winner names no other vertex and nobody else names
/// the same coordinates; its loser does not come back to life, and neither of the two is told to have left.
class PendingCaptures {
 public:
  /// A vertex ends 2.1 seconds after a client has laid it, and a client that lags behind carries a capture out at once
  /// if it has not laid it yet. So 2.1 seconds after the capture it is over everywhere, and the rest is for messages
  /// on their way and for slow frames.
  static constexpr Millis landingTime = 3'000;

  /// `extendedUntil` is the end of the winner's running extended tail, which lets nothing end.
  void add(std::int16_t winner, std::int16_t loser, const Spot& vertex, Millis now, Millis extendedUntil);
  /// The winner's extended tail begins. It puts off a capture once: in between two of them every client has a frame in
  /// which the tail ages.
  void extend(std::int16_t winner, Millis until);
  /// Forgets what has landed.
  void prune(Millis now);

  /// The vertex that the winner's waiting captures name; null if there are none.
  const Spot* vertexOf(std::int16_t winner) const;
  bool isNamedByAnother(std::int16_t winner, Vector place) const;
  bool involves(std::int16_t node) const;
  /// When the loser may live again as far as this goes; 0 if nothing waits.
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
