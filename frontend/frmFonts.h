#pragma once

#include <cstdint>

#include "frontend/theme.h"
#include "platform/form.h"
#include "platform/widgets.h"

namespace kelvora {

/// Edits colour and size for the five purposes of text, one block of controls each. Changes apply and are saved at
/// once. Positions are twips in the client area.
class FrmFonts : public Form {
 public:
  FrmFonts();
  /// Shows the current fonts.
  void load() override;

  ControlArray<Label, 5> lblFontLabel{[this](int i) {
    return Label{this,
                 {180, row(i, 60), 1500, 240},
                 purposeNames[i],
                 {.fore = white, .transparent = true, .font = panelFont, .autoSize = true}};
  }};
  ControlArray<Label, 5> lblFontDemo{[this](int i) {
    return Label{this,
                 {180, row(i, 450), 4500, 480},
                 "This is a sample of the font.",
                 {.fore = white, .back = black, .font = canvasFont}};
  }};
  ControlArray<Slider, 5> sldSize{[this](int i) { return Slider{this, {2280, row(i, 45), 2400, 360}, 9, 16}; }};
  ControlArray<Label, 5> lblFontColor{[this](int i) {
    return Label{this, {4920, row(i, 225), 615, 315}, "", {.back = white}};
  }};
  ControlArray<Label, 5> lblColorRed{[this](int i) { return bar(i, 60, RGB(255, 0, 0)); }};
  ControlArray<Label, 5> lblColorGreen{[this](int i) { return bar(i, 300, RGB(0, 255, 0)); }};
  ControlArray<Label, 5> lblColorBlue{[this](int i) { return bar(i, 540, RGB(0, 0, 255)); }};
  Button cmdClose{this, {5130, 5220, 1455, 375}, "Done"};

 private:
  static constexpr const char* purposeNames[] = {"Public Chat", "Private Chat (Send)", "Private Chat (Receive)",
                                                 "Server Message", "Error Message"};

  static constexpr float row(int purpose, float top) { return 120 + 1020.0F * static_cast<float>(purpose) + top; }
  Label bar(int purpose, float top, Colour solid) {
    return Label{this, {5730, row(purpose, top), 855, 180}, "", {.back = solid, .border = true}};
  }

  /// A drag across a bar, to `X` twips from its left end, sets a channel of the purpose's colour.
  static void barMouseMove(const Label& bar, int purpose, std::uint8_t channel, int Button, float X);
  void sizeChanged(int purpose);
};

extern FormSlot<FrmFonts> frmFonts;

}  // namespace kelvora
