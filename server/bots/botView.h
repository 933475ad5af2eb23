#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "base/millis.h"
#include "server/arena/playerView.h"

namespace kelvora::server {

/// Another player as a bot sees him, a moment late.
struct Seen {
  std::int16_t node = 0;
  bool isAlive = false;
  Point position;
  Point velocity;                 ///< world units per ms
  double turn = 0;                ///< radians per ms by which the velocity's direction changes
  std::span<const Point> tail{};  ///< the oldest first
  bool isTailCharged = false;     ///< some of it at least
  std::array<bool, powerupSlotCount> isRunning{};
};

/// All that a bot decides by. Of itself it knows what is; of the others what was a reaction's time ago.
struct BotView {
  Millis now = 0;
  bool isAlive = false;
  Point position;
  std::span<const Point> tail;
  std::array<bool, powerupSlotCount> isRunning{};
  std::array<int, powerupSlotCount> stock{};
  std::int64_t funds = 0;
  Millis delay = 0;  ///< how old the sight of the others is
  std::vector<Seen> others;
};

}  // namespace kelvora::server
