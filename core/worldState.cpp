#include <cmath>

#include "base/fault.h"
#include "core/modMain.h"
#include "frontend/frmMain.h"

namespace kelvora::modMain {

Vector mousePos;
clsPlayer localPlayer;
std::int16_t opponentCount = 0;
std::deque<clsPlayer> opponents;
double particleCount = 0;
std::vector<clsParticle> particles;
std::int16_t steerAngle = 0;
std::int16_t steerQuadrant = 0;
std::array<ChatLine, 8> chatLines;
std::string debugText;
std::array<std::string, 6> colourNames;
double spareParticleCount = 0;
std::vector<clsParticle> spareParticles;
double explosionCount = 0;
std::vector<clsParticle> explosionParticles;
std::vector<KillerTail> killerTails;
std::string roundMessage;
std::int32_t frameTime = 0;
std::array<std::int32_t, 101> frameTimes{};
bool survivalMode = false;
Vector survivalOrigin;
float survivalMaxDistance = 0;
std::int16_t netParticleCount = 0;
std::deque<clsParticle> netParticles;
std::string centreMessage;
std::int16_t centreMessageAge = 0;
std::array<std::string, 20> tips;
std::int16_t nextTip = 0;

std::size_t queuedPositions = 0;
std::size_t nameBytes = 0;

bool borderShrinking = false;
std::uint8_t borderWidth = 0;
std::int16_t borderCounter = 0;

void clearWorld() {
  mousePos = {};
  localPlayer = {};
  opponentCount = 0;
  opponents.clear();
  particleCount = 0;
  particles.clear();
  steerAngle = 0;
  steerQuadrant = 0;
  chatLines = {};
  debugText.clear();
  colourNames = {};
  spareParticleCount = 0;
  spareParticles.clear();
  explosionCount = 0;
  explosionParticles.clear();
  killerTails.clear();
  roundMessage.clear();
  frameTime = 0;
  frameTimes = {};
  survivalMode = false;
  survivalOrigin = {};
  survivalMaxDistance = 0;
  netParticleCount = 0;
  netParticles.clear();
  centreMessage.clear();
  centreMessageAge = 0;
  tips = {};
  nextTip = 0;
  queuedPositions = 0;
  nameBytes = 0;
  borderShrinking = false;
  borderWidth = 0;
  borderCounter = 0;
}

void keepName(const std::string& name) {
  if (name.size() > mostNameBytes - nameBytes) raiseOutOfMemory();
  nameBytes += name.size();
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

Vector getLocalPosition() { return localPlayer.position; }

std::int16_t getPlayerIndex(std::int16_t node) {
  // Quirk Q-222: nobody asks whether he is in the game, so that before the first login node 0 is the local player.
  if (node == localPlayer.serverNode) return -1;
  for (std::int16_t index = 0; index < opponentCount; ++index) {
    const clsPlayer& opponent = playerAt(index);
    if (opponent.serverNode == node && opponent.isConnected) return index;
  }
  // Quirk Q-030: nobody's node yields 0, which is also the number of the first slot.
  return 0;
}

std::int16_t getServerNode(std::int16_t index) {
  if (index == -1) return localPlayer.serverNode;
  // Quirk Q-031: a player who has gone is taken for the owner of node 0.
  if (index < 0 || index >= opponentCount || !playerAt(index).isConnected) return 0;
  return playerAt(index).serverNode;
}

std::string getPlayerName(std::int16_t index) {
  if (index >= opponentCount) return {};
  return playerAt(index).name;
}

clsPlayer& playerAt(std::int16_t index) {
  if (index == -1) return localPlayer;
  if (index < 0 || static_cast<std::size_t>(index) >= opponents.size()) raiseSubscriptOutOfRange();
  return opponents[static_cast<std::size_t>(index)];
}

void showCentreMessage(const std::string& text) {
  centreMessage = text;
  centreMessageAge = 0;
}

void showNextTip() {
  showCentreMessage(tips[static_cast<std::size_t>(nextTip)]);
  ++nextTip;
  if (nextTip >= static_cast<std::int16_t>(tips.size())) nextTip = 0;
}

Vector getMousePos() { return mousePos; }
std::int16_t getSteerAngle() { return steerAngle; }
std::int16_t getSteerQuadrant() { return steerQuadrant; }

}  // namespace kelvora::modMain
