#include <cstddef>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/numbers.h"
#include "base/text.h"
#include "core/centreMessage.h"
#include "frontend/console.h"
#include "network/send.h"
#include "platform/backend.h"
#include "protocol/powerupTable.h"
#include "protocol/wireFormat.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

namespace {

constexpr std::int16_t errorLine = 4;
constexpr std::int16_t plainLine = 5;
constexpr std::int16_t firstSound = 3;  // of the powerups, in the order of their slots

std::size_t slotIndex(std::int16_t slot) {
  if (!isSlot(slot)) raiseSubscriptOutOfRange();
  return static_cast<std::size_t>(slot);
}

}  // namespace

std::int16_t clsPlayer::totalPowerups() const {
  std::int32_t total = 0;
  for (const PowerupState& powerup : powerups) total += powerup.count;
  return toInt16(total);
}

void clsPlayer::requestActivatePowerup(std::int16_t slot) {
  const PowerupState& powerup = powerups[slotIndex(slot)];
  if (powerup.active) {
    printChat("That ability isn't ready yet.", errorLine);
    return;
  }
  // Quirk Q-044: the dead are told that they cannot, and then it is asked for all the same.
  if (!alive) printChat("You can't use abilities in your current state (ie:dead).", errorLine);
  // Quirk Q-045: the warning comes ahead of the look at the stock, so it is given with no pulse to fire, too.
  if (slot == pulseSlot && !powerups[shieldSlot].active) {
    printChat("Refusing to activate EMP, doing so without your shield active will kill you too!!!", plainLine);
    return;
  }
  if (powerup.count > 0) netMan::sendMessage(wire::msgActivateRequest, {numberText(std::int32_t{slot})});
}

void clsPlayer::activatePowerup(std::int16_t slot) {
  const std::size_t index = slotIndex(slot);
  PowerupState& powerup = powerups[index];
  if (powerup.active) return;
  // Quirk Q-046: the server's word counts; an activation without stock runs like any other.
  if (powerup.count > 0)
    --powerup.count;
  else
    powerup.count = 0;
  powerup.timeLeft = powerupTable[index].seconds;
  powerup.active = powerupTable[index].runs;
  if (playerIndex != -1) return;
  modMain::showCentreMessage(powerupTable[index].announcement);
  soundMan::playSound(static_cast<std::int16_t>(slot + firstSound));
}

void clsPlayer::unactivatePowerup(std::int16_t slot) {
  if (!isSlot(slot)) return;
  const std::size_t index = slotIndex(slot);
  powerups[index].active = false;
  // Quirk Q-273: nobody asks whether it was running, nor whose it is; the start of an opponent's is not told.
  if (powerupTable[index].collapse != nullptr) printChat(name + powerupTable[index].collapse, plainLine);
  // Quirk Q-180: the powerup's own number, not that of its sound: the end of the turbo silences the bounce and leaves
  // the turbo's sound running.
  soundMan::stopSound(slot);
}

void clsPlayer::tickPowerups() {
  // Quirk Q-268: the seconds are those of the clock, not of the powerup: what is left of the one in which it starts is
  // its first tick, and the laser can end a moment after it has begun.
  const std::int32_t now = toInt32(Timer());
  // Quirk Q-047: past midnight the difference is negative until the clock has caught up, and all timers stand still.
  if (now - lastPowerupTick < 1) return;
  // Quirk Q-269: however many seconds have passed since the last look, they are one tick.
  lastPowerupTick = now;
  for (PowerupState& powerup : powerups) {
    if (!powerup.active) continue;
    // Quirk Q-049: time ends a powerup, death does not: it runs on for the ghost and into the next life.
    --powerup.timeLeft;
    if (powerup.timeLeft > 0) continue;
    powerup.active = false;
    if (playerIndex != -1) continue;
    printChat("Powerup faded...", plainLine);
    modMain::showCentreMessage("Powerup faded");
  }
}

}  // namespace kelvora
