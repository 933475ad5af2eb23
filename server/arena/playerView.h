#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "protocol/powerupTable.h"
#include "server/arena/clientId.h"
#include "server/arena/plane.h"

namespace kelvora::server {

/// A copy of what the arena knows of a player at one moment.
struct PlayerView {
  ClientId client = 0;
  std::int16_t node = 0;
  std::int16_t colour = 0;
  std::string name;
  bool isAlive = false;
  Point position;             ///< of the last report that was accepted
  std::vector<Point> tail{};  ///< what clients show of it about now, the oldest first
  std::array<bool, powerupSlotCount> isRunning{};
  std::array<int, powerupSlotCount> stock{};
  std::int64_t funds = 0;  ///< credits
  std::int16_t kills = 0;  ///< of all rounds
  int roundCaptures = 0;   ///< of this round
};

}  // namespace kelvora::server
