#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/numbers.h"
#include "core/centreMessage.h"
#include "core/players.h"
#include "core/view.h"
#include "particles/pools.h"
#include "protocol/powerupTable.h"
#include "protocol/rules.h"
#include "simulation/clsPlayer.h"
#include "store/frmPowerups.h"

namespace kelvora {

void clsPlayer::init(PlayerColour newColour, std::int16_t index, std::int16_t node, const std::string& newName) {
  colour = newColour;
  playerIndex = index;
  serverNode = node;
  name = newName;
  funds(startFunds);
  kills = 0;
  alive = true;
  isConnected = true;
  speed = rules::topStep;
  positionReportInterval = rules::framesPerReport - 1;
  powerSlotLimit = startCapacity;
  awaitingFirstPosition = true;
  for (PowerupState& powerup : powerups) {
    powerup.count = 0;
    powerup.active = false;
  }
  if (!breaksOn) toggleBreaks();
  if (playerIndex == localIndex) modMain::createParticleField();
}

void clsPlayer::setAlive(bool isNowAlive) {
  alive = isNowAlive;
  if (!alive) {
    breaksOn = true;
  } else if (playerIndex == localIndex) {
    modMain::showNextTip();
  }
}

void clsPlayer::respawn() {
  // Quirk Q-109: the position stays: the new life starts where the ghost was.
  alive = true;
  if (playerIndex == localIndex && frmPowerups.isVisible()) frmPowerups.unload();
  captures.clear();
  clearCaptureStrip();
  breaksOn = true;
  if (playerIndex == localIndex) modMain::showNextTip();
}

void clsPlayer::die() {
  alive = false;
  if (modMain::isOnScreen(position)) soundMan::playSound(soundMan::Sound::Capture);
  // Quirk Q-107: one explosion particle for each capture of this life, so a player without captures leaves none.
  if (captureCount() > 0) modMain::addExplosion(position, captureCount());
}

void clsPlayer::receiveCapture(PlayerColour victimColour) {
  if (captures.size() >= 32767) raiseOverflow();  // captureCount has 16 bits
  captures.push_back(victimColour);
  kills = toInt16(kills + 1);
  displayKills();
  displayCapture(victimColour);
}

void clsPlayer::setKills(std::int16_t newKills) {
  kills = newKills;
  displayKills();
}

void clsPlayer::funds(double credits) {
  funds_ = roundToEven(credits) + 0.0;  // no negative zero
  // Quirk Q-312: an open store keeps its own balance until a purchase or sale.
  if (playerIndex == localIndex) displayFunds();
}

}  // namespace kelvora
