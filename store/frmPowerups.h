#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "frontend/theme.h"
#include "platform/form.h"
#include "platform/pictureBox.h"
#include "platform/widgets.h"
#include "protocol/powerupTable.h"

namespace kelvora {

/// The store: a row for each powerup with its price and the player's stock. It only displays values: the server keeps
/// the prices, the balance and the stock. Positions are twips in the client area, on the panels of the background
/// picture.
class FrmPowerups : public Form {
 public:
  FrmPowerups();
  /// Places the window over the main one, as every Activate does.
  void load() override;

  /// Fills in the balance and colours the prices. RuntimeFault as `colourPrices`.
  void init(double funds);
  /// Fills in the stock of one item. RuntimeFault for an item outside 0 to 5.
  void have(PowerupSlot item, std::int16_t count);
  /// Darkens the prices above the displayed balance. Their items can still be requested. RuntimeFault "Overflow" for
  /// a balance that its own label's text exceeds.
  void colourPrices();

  Image imgBackground{this, {0, 0, 11415, 9090}};

  Label Label6{this, {8010, 120, 1500, 255}, "Capacity", total(white)};
  Label lblCapacity{this, {8010, 375, 1500, 270}, "0 / 25", total(yellow)};
  Label lblCredits{this, {9630, 120, 1500, 255}, "Credits", total(white)};
  Label lblFunds{this, {9630, 375, 1500, 270}, "0", total(yellow)};

  Label Label2{this, {300, 780, 2760, 240}, "Item", heading(Alignment::Left)};
  Label Label3{this, {3300, 780, 1080, 240}, "Cost", heading(Alignment::Centre)};
  Label Label4{this, {4680, 780, 4860, 240}, "Description", heading(Alignment::Left)};
  Label Label5{this, {9840, 780, 1080, 240}, "Current", heading(Alignment::Centre)};

  ControlArray<PictureBox, powerupSlotCount> picPowerup{[this](int i) {
    return PictureBox{this, {300, row(i, 105), 855, 855}};
  }};
  ControlArray<Label, powerupSlotCount> lblItemName{[this](int i) {
    return Label{
        this, {1350, row(i, 405), 1800, 255}, ware(i).name, {.fore = yellow, .transparent = true, .font = chatFont}};
  }};
  ControlArray<Label, powerupSlotCount> lblItemCost{[this](int i) {
    return Label{this,
                 {3300, row(i, 135), 1080, 255},
                 std::to_string(ware(i).price),
                 {.back = white, .alignment = Alignment::Centre, .font = panelFontBold}};
  }};
  ControlArray<Button, powerupSlotCount> cmdBuy{[this](int i) {
    return Button{this, {3300, row(i, 480), 1080, 450}, "Buy"};
  }};
  ControlArray<Label, powerupSlotCount> lblItemDescription{[this](int i) {
    return Label{this,
                 {4680, row(i, 195), 5055, 810},
                 ware(i).description,
                 {.fore = white, .transparent = true, .font = panelFont}};
  }};
  ControlArray<Label, powerupSlotCount> lblCurrentStock{[this](int i) {
    return Label{this,
                 {9840, row(i, 135), 1080, 255},
                 "0",
                 {.fore = white, .transparent = true, .alignment = Alignment::Centre, .font = panelFontBold}};
  }};
  ControlArray<Button, powerupSlotCount> cmdSell{[this](int i) {
    return Button{this, {9840, row(i, 480), 1080, 450}, "Sell"};
  }};

  Label lblWinners{this, {360, 8220, 9240, 600}, "", {.fore = yellow, .transparent = true, .font = chatFont}};
  Button cmdDone{this, {9840, 8250, 1080, 480}, "Done"};

 private:
  static constexpr float row(int item, float top) { return 1080 + 1140.0F * static_cast<float>(item) + top; }
  static const Powerup& ware(int item) { return powerupTable[static_cast<std::size_t>(item)]; }
  static LabelDesign heading(Alignment alignment) {
    return {.fore = white, .transparent = true, .alignment = alignment, .font = panelFontBold};
  }
  static LabelDesign total(Colour colour) {
    return {.fore = colour, .transparent = true, .alignment = Alignment::Centre, .font = chatFont};
  }

  void place();

  // Quirk Q-276: never read; prices are coloured by the labels' texts.
  double funds_ = 0;
  std::array<std::int16_t, powerupSlotCount> stock_{};
};

extern FormSlot<FrmPowerups> frmPowerups;

}  // namespace kelvora
