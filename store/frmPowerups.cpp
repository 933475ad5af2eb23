#include "store/frmPowerups.h"

#include "base/text.h"
#include "core/modMain.h"
#include "frontend/frmMain.h"
#include "platform/backend.h"

namespace kelvora {

FormSlot<FrmPowerups> frmPowerups;

namespace {

constexpr Colour affordable = RGB(255, 255, 255);
constexpr Colour unaffordable = RGB(128, 95, 95);
constexpr float offsetFromMain = 120;  // twips

}  // namespace

FrmPowerups::FrmPowerups() : Form("Powerups", {.clientWidth = 11370, .clientHeight = 9060, .border = Border::Fixed}) {
  const std::string assets = applicationPath() + "/assets/";
  imgBackground.Picture = LoadPicture(assets + "store.png");
  int tabIndex = 0;
  for (const PowerupSlot item : powerupSlots) {
    const auto buy = [item] { modMain::world.localPlayer.purchaseItem(item); };
    picPowerup[item].setPicture(LoadPicture(assets + "storeItem" + std::to_string(item) + ".png"));
    picPowerup[item].ToolTipText = "Click to purchase this item";
    picPowerup[item].Click = buy;
    cmdBuy[item].Click = buy;
    cmdSell[item].Click = [item] { modMain::world.localPlayer.sellItem(item); };
    cmdBuy[item].TabIndex = tabIndex++;
    cmdSell[item].TabIndex = tabIndex++;
  }
  cmdDone.TabIndex = tabIndex;
  cmdDone.Click = [] { frmPowerups.unload(); };
  Activate = [this] { place(); };
}

void FrmPowerups::load() { place(); }

// Quirk Q-207: every Activate places the window again, so it jumps back as soon as it gets the focus.
void FrmPowerups::place() {
  Top = frmMain->Top + offsetFromMain;
  Left = frmMain->Left + offsetFromMain;
}

void FrmPowerups::init(double funds) {
  funds_ = funds;
  lblFunds.Caption = numberText(funds);
  colourPrices();
}

void FrmPowerups::have(PowerupSlot item, std::int16_t count) {
  lblCurrentStock[item].Caption = numberText(std::int32_t{count});
  stock_[indexOf(item)] = count;
}

void FrmPowerups::colourPrices() {
  for (int i = 0; i <= lblItemCost.UBound; ++i) {
    // Quirk Q-305: credits at the end of a double's range can't be read back from the label's 15 digits.
    const bool isUnaffordable = readNumber(lblFunds.Caption.get()) < readNumber(lblItemCost[i].Caption.get());
    lblItemCost[i].BackColor = isUnaffordable ? unaffordable : affordable;
  }
}

}  // namespace kelvora
