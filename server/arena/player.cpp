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
  for (const PowerupSlot slot : powerupSlots) {
    view.isRunning[indexOf(slot)] = player.inventory.isRunning(slot, now);
    view.stock[indexOf(slot)] = player.inventory.stock(slot);
  }
  return view;
}

}  // namespace kelvora::server
