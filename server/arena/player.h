#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/rateLimit.h"
#include "server/arena/inventory.h"
#include "server/arena/lessons.h"
#include "server/arena/playerView.h"
#include "server/arena/session.h"
#include "server/arena/speedLimit.h"
#include "server/arena/tail.h"

namespace kelvora::server {

inline constexpr double positionsPerSecond = 100;  ///< of one player that are relayed; the others are dropped

/// A logged-in player.
struct Player {
  ClientId client = 0;
  std::int16_t node = 0;
  PlayerColour colour = redPlayer;
  std::string name;
  Spot spot;                       ///< last accepted report, or the start position
  std::optional<Point> heading{};  ///< last movement, not zero on both axes
  Tail tail{};                     ///< empty while dead
  bool isAlive = true;
  Millis respawnAt = 0;          ///< earliest respawn once dead
  bool wantsRespawn = false;     ///< the request is pending
  bool isOffered = true;         ///< has been told that a respawn is available
  std::int16_t kills = 0;        ///< as counted by clients
  int roundCaptures = 0;         ///< of others, in this round
  std::int64_t lastCapture = 0;  ///< its number among all captures, to break ties
  Inventory inventory{};
  Millis paidUntil = 0;
  Session session{};
  Millis lastReport = 0;  ///< when the last position was accepted
  SpeedLimit speed{};
  RateLimit positions{positionsPerSecond, 50};
  Millis joined = 0;
  Lessons lessons{};  ///< of the coach
};

/// A snapshot of the player at `now`.
PlayerView viewOf(const Player& player, Millis now);

}  // namespace kelvora::server
