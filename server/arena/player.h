#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/rateLimit.h"
#include "server/arena/clientId.h"
#include "server/arena/inventory.h"
#include "server/arena/speedLimit.h"
#include "server/arena/tail.h"

namespace kelvora::server {

inline constexpr double positionsPerSecond = 100;  ///< relayed of one player; the others are dropped
inline constexpr double requestsPerSecond = 10;    ///< of one player: chat, store, spawns and powerups together

/// One who is logged in.
struct Player {
  std::int16_t node = 0;
  std::int16_t colour = 0;
  std::string name;
  Spot spot;                       ///< of the last accepted report, or where he begins
  std::optional<Point> heading{};  ///< his last movement, not zero on both axes
  Tail tail{};                     ///< empty while he is dead
  bool isAlive = true;
  Millis respawnAt = 0;          ///< not before, once he is dead
  bool wantsRespawn = false;     ///< he has asked for it and waits
  bool isOffered = true;         ///< he knows that he may ask for it
  std::int16_t kills = 0;        ///< as clients count them
  int roundCaptures = 0;         ///< of others, in this round
  std::int64_t lastCapture = 0;  ///< its number among all captures
  Inventory inventory{};
  Millis paidUntil = 0;
  Millis nextPing = 0;
  std::optional<Millis> pingSent{};  ///< of the ping that waits for its answer
  Millis lastReport = 0;             ///< when the last position was accepted
  SpeedLimit speed{};
  RateLimit positions{positionsPerSecond, 50};
  RateLimit requests{requestsPerSecond, 20};
};

}  // namespace kelvora::server
