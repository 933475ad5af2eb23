#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/numbers.h"
#include "core/centreMessage.h"
#include "core/players.h"
#include "frontend/console.h"
#include "network/send.h"
#include "platform/backend.h"
#include "protocol/powerupTable.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

namespace {

std::size_t checkedIndex(PowerupSlot slot) {
  if (!isSlot(slot)) raiseSubscriptOutOfRange();
  return indexOf(slot);
}

}  // namespace

std::int16_t clsPlayer::totalPowerups() const {
  std::int32_t total = 0;
  for (const PowerupState& powerup : powerups) total += powerup.count;
  return toInt16(total);
}

void clsPlayer::requestActivatePowerup(PowerupSlot slot) {
  const PowerupState& powerup = powerups[checkedIndex(slot)];
  if (powerup.active) {
    printChat("That ability isn't ready yet.", LineType::Error);
    return;
  }
  // Quirk Q-044: the dead are refused, and the request is sent anyway.
  if (!alive) printChat("You can't use abilities in your current state (ie:dead).", LineType::Error);
  // Quirk Q-045: checked before the stock, so the warning appears even if there is no pulse to fire.
  if (slot == pulseSlot && !powerups[shieldSlot].active) {
    printChat("Refusing to activate EMP, doing so without your shield active will kill you too!!!", LineType::Plain);
    return;
  }
  if (powerup.count > 0) netMan::sendMessage<wire::msgActivateRequest>(slot);
}

void clsPlayer::activatePowerup(PowerupSlot slot) {
  const std::size_t index = checkedIndex(slot);
  PowerupState& powerup = powerups[index];
  if (powerup.active) return;
  // Quirk Q-046: an activation by the server runs even without stock.
  powerup.count = std::max<std::int16_t>(toInt16(powerup.count - 1), 0);
  powerup.timeLeft = powerupTable[index].seconds;
  powerup.active = powerupTable[index].runs;
  if (playerIndex != localIndex) return;
  modMain::showCentreMessage(powerupTable[index].announcement);
  soundMan::playSound(static_cast<soundMan::Sound>(slot + static_cast<int>(soundMan::Sound::Shield)));
}

void clsPlayer::unactivatePowerup(PowerupSlot slot) {
  if (!isSlot(slot)) return;
  const std::size_t index = indexOf(slot);
  powerups[index].active = false;
  // Quirk Q-273: reported for anybody's powerup, even one that wasn't running. The start of an opponent's is not
  // reported.
  if (powerupTable[index].collapse != nullptr) printChat(name + powerupTable[index].collapse, LineType::Plain);
  // Quirk Q-180: the powerup's own number, not its sound's. The end of a turbo stops the bounce and leaves the turbo's
  // sound running.
  soundMan::stopSound(soundMan::Sound{slot});
}

void clsPlayer::tickPowerups() {
  // Quirk Q-268: counts the clock's seconds. The rest of the second in which a powerup starts is its first tick, so a
  // laser can end a moment after it began.
  const std::int32_t now = toInt32(Timer());
  // Quirk Q-047: after midnight the difference is negative until the clock catches up, and all timers stand still.
  if (now - lastPowerupTick < 1) return;
  // Quirk Q-269: any number of elapsed seconds is one tick.
  lastPowerupTick = now;
  for (PowerupState& powerup : powerups) {
    if (!powerup.active) continue;
    // Quirk Q-049: only time ends a powerup. It keeps running for the ghost and in the next life.
    --powerup.timeLeft;
    if (powerup.timeLeft > 0) continue;
    powerup.active = false;
    if (playerIndex != localIndex) continue;
    printChat("Powerup faded...", LineType::Plain);
    modMain::showCentreMessage("Powerup faded");
  }
}

}  // namespace kelvora
