#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "server/arena/player.h"

namespace kelvora::server {

/// When the pieces are tested, in the arena's clock.
inline constexpr Millis testTime = 10'000;

inline Spot spotAt(int x, int y) {
  return spotOf(std::to_string(x), std::to_string(y), {static_cast<float>(x), static_cast<float>(y)});
}

/// A living player whose node is the client's number and whose colour is one less.
inline Player playerAt(ClientId client, int x, int y) {
  return {.client = client,
          .node = static_cast<std::int16_t>(client),
          .colour = static_cast<PlayerColour>(client - 1),
          .name = "P" + std::to_string(client),
          .spot = spotAt(x, y)};
}

/// Lays a tail along the spots. The player is at the last one.
inline void fly(Player& player, const std::vector<Spot>& spots, Millis now, bool isCharged = false) {
  for (const Spot& spot : spots) {
    EXPECT_TRUE(player.tail.lay(spot, now, isCharged, 0));
    player.spot = spot;
  }
}

/// Gives a player a powerup and starts it.
inline void run(Player& player, PowerupSlot item, Millis now) {
  player.inventory.book(Entry::capture, 100);
  EXPECT_FALSE(player.inventory.buy(item).isRefused());
  EXPECT_TRUE(player.inventory.start(item, now));
}

}  // namespace kelvora::server
