// Messages that concern one player, by node.

#include "base/fault.h"
#include "core/modMain.h"
#include "core/players.h"
#include "network/handlers.h"
#include "rendering/playerPanel.h"
#include "simulation/clsPlayer.h"

namespace kelvora::netMan {

using modMain::world;

namespace {

bool isKnownOpponent(std::int16_t index) { return index >= 0 && index < world.opponentCount; }

/// The player with this node. An unknown node is taken for the first opponent, as by getPlayerIndex; null if there is
/// none.
clsPlayer* findPlayer(std::int16_t node) {
  const std::int16_t index = modMain::getPlayerIndex(node);
  if (index == localIndex) return &world.localPlayer;
  return isKnownOpponent(index) ? &modMain::playerAt(index) : nullptr;
}

}  // namespace

void receivePosition(std::int16_t node, float x, float y) {
  clsPlayer* player = findPlayer(node);
  const Vector point{x, y};
  if (player == &world.localPlayer) {
    // Quirk Q-227: your own position comes back to lay the tail, which therefore trails behind the ball by a round
    // trip. The ball itself only follows the mouse.
    if (world.localPlayer.position != point) world.localPlayer.addTail(point);
  } else if (player) {
    player->queuePosition(point);
  }
}

void receiveVelocity(std::int16_t node, float vx, float vy) {
  clsPlayer* player = findPlayer(node);
  if (player && player != &world.localPlayer) player->setVelocity({vx, vy});
}

void receiveAliveState(std::int16_t node, std::int16_t alive) {
  const std::int16_t index = modMain::getPlayerIndex(node);
  if (index >= world.opponentCount) return;
  // Quirk Q-068: for an opponent this asks for the slot after the last one. There is none, so the message never changes
  // an opponent.
  if (index != localIndex) raiseSubscriptOutOfRange();
  world.localPlayer.setAlive(alive != 0);
}

void receiveFunds(std::int16_t node, double funds) {
  if (clsPlayer* player = findPlayer(node)) player->funds(funds);
}

void receiveRespawn(std::int16_t node) {
  clsPlayer* player = findPlayer(node);
  if (!player) return;
  player->respawn();
  if (player == &world.localPlayer) modMain::setButtonsState(false);
}

void receivePowerupOn(std::int16_t node, PowerupSlot item) {
  if (clsPlayer* player = findPlayer(node)) player->activatePowerup(item);
}

void receivePowerupOff(std::int16_t node, PowerupSlot item) {
  if (clsPlayer* player = findPlayer(node)) player->unactivatePowerup(item);
}

}  // namespace kelvora::netMan
