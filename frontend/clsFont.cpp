#include "frontend/clsFont.h"

#include <cstddef>
#include <iterator>

#include "base/fault.h"
#include "base/numbers.h"
#include "base/text.h"
#include "frontend/frmFonts.h"
#include "platform/backend.h"

namespace kelvora {

namespace {

constexpr const char* fontsSection = "fonts";

constexpr Colour defaultColours[] = {
    RGB(128, 255, 128),  // public chat
    RGB(255, 255, 255),  // private chat, sent
    RGB(255, 0, 255),    // private chat, received
    RGB(255, 255, 0),    // server message
    RGB(255, 0, 0),      // error message
};

std::uint8_t readChannel(const std::string& key, std::uint8_t fallback) {
  return toByte(strictNumber(GetSetting(fontsSection, key, numberText(std::int32_t{fallback}))));
}

}  // namespace

void clsFont::init(std::int16_t newPurpose) {
  purpose = newPurpose;
  loadSettings();
}

void clsFont::loadSettings() {
  if (purpose < 0 || static_cast<std::size_t>(purpose) >= std::size(defaultColours)) raiseSubscriptOutOfRange();
  const Colour fallback = defaultColours[static_cast<std::size_t>(purpose)];
  size = toInt16(strictNumber(GetSetting(fontsSection, key("size"), "9")));
  red = readChannel(key("colorR"), fallback.red);
  green = readChannel(key("colorG"), fallback.green);
  blue = readChannel(key("colorB"), fallback.blue);
  // Quirk Q-141: the stored family is not used, and the dialog can't change it.
  family = GetSetting(fontsSection, key("family"), "Comic Sans MS");
}

void clsFont::showToForm() {
  if (purpose < 0 || purpose > decltype(FrmFonts::sldSize)::UBound) return;
  FrmFonts& form = *frmFonts;
  form.lblFontColor[purpose].BackColor = getColour();
  form.sldSize[purpose].Value = size;
  form.lblFontDemo[purpose].FontSize = size;
  form.lblFontDemo[purpose].ForeColor = getColour();
}

void clsFont::setColour(std::uint8_t channel, std::uint8_t value) {
  const char* name = nullptr;
  switch (channel) {
    case 0:
      red = value;
      name = "colorR";
      break;
    case 1:
      green = value;
      name = "colorG";
      break;
    case 2:
      blue = value;
      name = "colorB";
      break;
    default:
      return;
  }
  SaveSetting(fontsSection, key(name), numberText(std::int32_t{value}));
  if (frmFonts.isVisible()) showToForm();
}

void clsFont::updateSize(std::int16_t newSize) {
  size = newSize;
  SaveSetting(fontsSection, key("size"), numberText(std::int32_t{size}));
  if (frmFonts.isVisible()) showToForm();
}

std::string clsFont::key(const char* name) const { return numberText(std::int32_t{purpose}) + name; }

}  // namespace kelvora
