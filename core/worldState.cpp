#include <cmath>

#include "base/fault.h"
#include "core/modMain.h"
#include "frontend/frmMain.h"

namespace kelvora::modMain {

World world;

void keepName(const std::string& name) {
  if (name.size() > mostNameBytes - world.nameBytes) raiseOutOfMemory();
  world.nameBytes += name.size();
}

float getDistance(Vector a, Vector b) {
  const double dx = std::fabs(a.x - b.x);
  const double dy = std::fabs(a.y - b.y);
  return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

bool isOnScreen(Vector worldPoint) {
  const Vector point = worldToScreen(worldPoint);
  const PictureBox& canvas = frmMain->canvas;
  return 0 <= point.x && point.x <= canvas.Width && 0 <= point.y && point.y <= canvas.Height;
}

Vector getLocalPosition() { return world.localPlayer.position; }

std::int16_t getPlayerIndex(std::int16_t node) {
  // Quirk Q-222: nobody asks whether he is in the game, so that before the first login node 0 is the local player.
  if (node == world.localPlayer.serverNode) return -1;
  for (std::int16_t index = 0; index < world.opponentCount; ++index) {
    const clsPlayer& opponent = playerAt(index);
    if (opponent.serverNode == node && opponent.isConnected) return index;
  }
  // Quirk Q-030: nobody's node yields 0, which is also the number of the first slot.
  return 0;
}

std::int16_t getServerNode(std::int16_t index) {
  if (index == -1) return world.localPlayer.serverNode;
  // Quirk Q-031: a player who has gone is taken for the owner of node 0.
  if (index < 0 || index >= world.opponentCount || !playerAt(index).isConnected) return 0;
  return playerAt(index).serverNode;
}

std::string getPlayerName(std::int16_t index) {
  if (index >= world.opponentCount) return {};
  return playerAt(index).name;
}

clsPlayer& playerAt(std::int16_t index) {
  if (index == -1) return world.localPlayer;
  if (index < 0 || static_cast<std::size_t>(index) >= world.opponents.size()) raiseSubscriptOutOfRange();
  return world.opponents[static_cast<std::size_t>(index)];
}

void showCentreMessage(const std::string& text) {
  world.centreMessage = text;
  world.centreMessageAge = 0;
}

void showNextTip() {
  showCentreMessage(world.tips[static_cast<std::size_t>(world.nextTip)]);
  ++world.nextTip;
  if (world.nextTip >= static_cast<std::int16_t>(world.tips.size())) world.nextTip = 0;
}

Vector getMousePos() { return world.mousePos; }
std::int16_t getSteerAngle() { return world.steerAngle; }
std::int16_t getSteerQuadrant() { return world.steerQuadrant; }

}  // namespace kelvora::modMain
