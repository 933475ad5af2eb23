#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "base/millis.h"
#include "server/arena/playerView.h"

namespace kelvora::server {

/// Another player as seen by a bot, with a delay.
struct Seen {
  std::int16_t node = 0;
  bool isAlive = false;
  Point position;
  Point velocity;                 ///< world units per ms
  double turn = 0;                ///< change of the velocity's direction, radians per ms
  std::span<const Point> tail{};  ///< oldest first
  bool isTailCharged = false;     ///< at least in part
  std::array<bool, powerupSlotCount> isRunning{};
};

/// Everything a bot bases its decisions on: its own current state, and the others' as of one reaction time ago.
struct BotView {
  Millis now = 0;
  bool isAlive = false;
  Point position;
  std::span<const Point> tail;
  std::array<bool, powerupSlotCount> isRunning{};
  std::array<int, powerupSlotCount> stock{};
  std::int64_t funds = 0;
  Millis delay = 0;  ///< age of what it sees of the others
  std::vector<Seen> others;
};

}  // namespace kelvora::server
