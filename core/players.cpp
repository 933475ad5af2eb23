#include "core/players.h"

#include <algorithm>
#include <cstddef>

#include "base/fault.h"
#include "core/modMain.h"
#include "protocol/rules.h"
#include "simulation/clsPlayer.h"

namespace kelvora::modMain {

void fillColourNames() { std::copy(rules::colourNames.begin(), rules::colourNames.end(), world.colourNames.begin()); }

std::int16_t getPlayerIndex(std::int16_t node) {
  // Quirk Q-222: isConnected is not checked, so before the first login node 0 is the local player.
  if (node == world.localPlayer.serverNode) return localIndex;
  for (std::int16_t index = 0; index < world.opponentCount; ++index) {
    const clsPlayer& opponent = playerAt(index);
    if (opponent.serverNode == node && opponent.isConnected) return index;
  }
  // Quirk Q-030: an unknown node yields 0, which is also the index of the first slot.
  return 0;
}

std::int16_t getServerNode(std::int16_t index) {
  if (index == localIndex) return world.localPlayer.serverNode;
  // Quirk Q-031: a departed player counts as the owner of node 0.
  if (index < 0 || index >= world.opponentCount || !playerAt(index).isConnected) return 0;
  return playerAt(index).serverNode;
}

std::string getPlayerName(std::int16_t index) {
  if (index >= world.opponentCount) return {};
  return playerAt(index).name;
}

clsPlayer& playerAt(std::int16_t index) {
  if (index == localIndex) return world.localPlayer;
  if (index < 0 || static_cast<std::size_t>(index) >= world.opponents.size()) raiseSubscriptOutOfRange();
  return world.opponents[static_cast<std::size_t>(index)];
}

Vector getLocalPosition() { return world.localPlayer.position; }

}  // namespace kelvora::modMain
