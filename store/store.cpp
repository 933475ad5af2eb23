#include "store/store.h"

#include <cmath>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/text.h"
#include "core/modMain.h"
#include "core/players.h"
#include "frontend/console.h"
#include "network/send.h"
#include "simulation/clsPlayer.h"
#include "store/frmPowerups.h"

namespace kelvora {

void modMain::openStore() {
  // Quirk Q-310: a disconnection doesn't clear the text, so it may tell of a round on another server.
  frmPowerups->lblWinners.Caption = world.roundMessage;
  world.localPlayer.populatePowerupsForm();
  frmPowerups->Show();
  // Quirk Q-270: closing the store doesn't stop this track. It plays to its end, and then the rotation continues.
  soundMan::playMusic(soundMan::storeTrack);
}

void clsPlayer::populatePowerupsForm() {
  // Quirk Q-200: before the first login nobody is the local player, and the window keeps its design texts.
  if (playerIndex != localIndex) return;
  // Quirk Q-201: doesn't fill in the capacity. A new window shows its design text until something is bought or sold.
  frmPowerups->init(funds_);
  for (const PowerupSlot slot : powerupSlots) frmPowerups->have(slot, powerups[indexOf(slot)].count);
}

void clsPlayer::purchaseItem(PowerupSlot item) {
  // Quirk Q-202: neither this nor the button checks the credits. The server refuses unaffordable items.
  if (totalPowerups() < powerSlotLimit) {
    netMan::sendMessage<wire::msgBuyRequest>(item);
    return;
  }
  // Quirk Q-315: "nowhere" is two words.
  showStoreStatus("Cannot purchase powerup, you have no where to store it.  Check your capacity, consider selling.");
  soundMan::playSound(soundMan::Sound::Error);
}

void clsPlayer::sellItem(PowerupSlot item) {
  // Quirk Q-203: the stock is not checked.
  netMan::sendMessage<wire::msgSellRequest>(item);
}

void clsPlayer::purchaseAccepted(PowerupSlot item, std::int16_t stock, double credits) {
  funds(credits);
  if (!isSlot(item)) raiseSubscriptOutOfRange();
  powerups[indexOf(item)].count = stock;
  printChat("Item purchased", LineType::ServerMessage);
  showStoreStatus("Item purchased");
}

void clsPlayer::sellItemAccepted(PowerupSlot item, std::int16_t stock, double credits) {
  // Quirk Q-204: a sale bypasses the setter of the credits. They are not rounded, and the main window keeps the old
  // balance until the server updates it. Unlike a purchase, a sale prints no line in the console.
  if (isSlot(item)) {
    powerups[indexOf(item)].count = stock;
    funds_ = credits;
  }
  // Quirk Q-205: an unknown item is reported as sold, too.
  showStoreStatus("Item sold");
}

void clsPlayer::showStoreStatus(const std::string& text) {
  if (!frmPowerups.isVisible()) return;
  frmPowerups->lblWinners.Caption = text;
  for (const PowerupSlot slot : powerupSlots) {
    frmPowerups->lblCurrentStock[slot].Caption = numberText(std::int32_t{powerups[indexOf(slot)].count});
  }
  // Quirk Q-275: rounded down, unlike in a newly opened window.
  frmPowerups->lblFunds.Caption = numberText(std::floor(funds_));
  frmPowerups->lblCapacity.Caption =
      numberText(std::int32_t{totalPowerups()}) + " / " + numberText(std::int32_t{powerSlotLimit});
  frmPowerups->colourPrices();
}

}  // namespace kelvora
