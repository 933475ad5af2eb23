#include "server/arena/player.h"

namespace kelvora::server {

PlayerView viewOf(const Player& player, Millis now) {
  PlayerView view{.client = player.client,
                  .node = player.node,
                  .colour = player.colour,
                  .name = player.name,
                  .isAlive = player.isAlive,
                  .position = player.spot.point(),
                  .funds = player.inventory.funds(),
                  .kills = player.kills,
                  .roundCaptures = player.roundCaptures};
  for (const Tail::Vertex& vertex : player.tail.vertices()) view.tail.push_back(vertex.spot.point());
  for (int item = 0; item < powerupSlotCount; ++item) {
    const auto slot = static_cast<std::size_t>(item);
    view.isRunning[slot] = player.inventory.isRunning(item, now);
    view.stock[slot] = player.inventory.stock(item);
  }
  return view;
}

}  // namespace kelvora::server
