#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "protocol/powerupTable.h"
#include "server/arena/clientId.h"
#include "server/arena/plane.h"

namespace kelvora::server {

/// A snapshot of what the arena knows about a player.
struct PlayerView {
  ClientId client = 0;
  std::int16_t node = 0;
  PlayerColour colour = redPlayer;
  std::string name;
  bool isAlive = false;
  Point position;             ///< the last accepted report
  std::vector<Point> tail{};  ///< roughly as shown by clients, oldest first
  std::array<bool, powerupSlotCount> isRunning{};
  std::array<int, powerupSlotCount> stock{};
  std::int64_t funds = 0;  ///< credits
  std::int16_t kills = 0;  ///< in all rounds
  int roundCaptures = 0;   ///< in this round
};

}  // namespace kelvora::server
