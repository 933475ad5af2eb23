#include "store/store.h"

#include <array>
#include <cmath>
#include <cstddef>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "base/text.h"
#include "core/modMain.h"
#include "frontend/console.h"
#include "network/send.h"
#include "protocol/wireFormat.h"
#include "simulation/clsPlayer.h"
#include "store/frmPowerups.h"

namespace kelvora {

namespace {

constexpr std::int16_t serverLine = 3;
constexpr std::int16_t shoppingMusic = 0;
constexpr std::int16_t errorSound = 2;

}  // namespace

void modMain::openStore() {
  frmPowerups->lblWinners.Caption = world.roundMessage;
  world.localPlayer.populatePowerupsForm();
  frmPowerups->Show();
  // Quirk Q-270: nothing ends this track when the store closes; it plays to its end, and then the rotation goes on.
  soundMan::playMusic(shoppingMusic);
}

void clsPlayer::populatePowerupsForm() {
  // Quirk Q-200: nobody is the local player before the first login, and the window keeps its design texts.
  if (playerIndex != -1) return;
  // Quirk Q-201: the capacity is left out; a fresh window shows its design text until something is bought or sold.
  frmPowerups->init(funds_);
  for (std::int16_t i = 0; i < powerupSlotCount; ++i) frmPowerups->have(i, powerups[static_cast<std::size_t>(i)].count);
}

void clsPlayer::purchaseItem(std::int16_t item) {
  // Quirk Q-202: the credits are not looked at, here or by the button; what is too dear is the server's to refuse.
  if (totalPowerups() < powerSlotLimit) {
    netMan::sendMessage(wire::msgBuyRequest, {numberText(std::int32_t{item})});
    return;
  }
  showStoreStatus("Cannot purchase powerup, you have no where to store it.  Check your capacity, consider selling.");
  soundMan::playSound(errorSound);
}

void clsPlayer::sellItem(std::int16_t item) {
  // Quirk Q-203: nobody asks whether there is anything to sell.
  netMan::sendMessage(wire::msgSellRequest, {numberText(std::int32_t{item})});
}

void clsPlayer::purchaseAccepted(std::int16_t item, std::int16_t stock, double credits) {
  funds(credits);
  if (!isSlot(item)) raiseSubscriptOutOfRange();
  powerups[static_cast<std::size_t>(item)].count = stock;
  printChat("Item purchased", serverLine);
  showStoreStatus("Item purchased");
}

void clsPlayer::sellItemAccepted(std::int16_t item, std::int16_t stock, double credits) {
  // Quirk Q-204: a sale goes past the setter of the credits: they are not rounded, and the main window keeps the old
  // balance until the server next speaks of it. There is no line in the console, unlike after a purchase.
  if (isSlot(item)) {
    powerups[static_cast<std::size_t>(item)].count = stock;
    funds_ = credits;
  }
  // Quirk Q-205: an item that does not exist is sold as well, as far as the words go.
  showStoreStatus("Item sold");
}

void clsPlayer::showStoreStatus(const std::string& text) {
  if (!frmPowerups.isVisible()) return;
  frmPowerups->lblWinners.Caption = text;
  for (int i = 0; i < powerupSlotCount; ++i) {
    const std::int32_t count = powerups[static_cast<std::size_t>(i)].count;
    frmPowerups->lblCurrentStock[i].Caption = numberText(count);
  }
  // Quirk Q-275: without the fraction, which a newly filled window shows.
  frmPowerups->lblFunds.Caption = numberText(std::floor(funds_));
  frmPowerups->lblCapacity.Caption =
      numberText(std::int32_t{totalPowerups()}) + " / " + numberText(std::int32_t{powerSlotLimit});
  frmPowerups->colourPrices();
}

}  // namespace kelvora
