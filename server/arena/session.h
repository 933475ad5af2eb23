#pragma once

#include <optional>

#include "base/rateLimit.h"

namespace kelvora::server {

inline constexpr double requestsPerSecond = 10;  ///< of one client: chat, store, spawns and powerups combined

/// A connection that has logged in, a player's or a spectator's, as the arena sees it.
struct Session {
  Millis nextPing = 0;
  std::optional<Millis> pingSent{};  ///< the unanswered ping
  RateLimit requests{requestsPerSecond, 20};
  bool knowsOfMute = false;  ///< has been told why nobody gets the client's lines
};

}  // namespace kelvora::server
