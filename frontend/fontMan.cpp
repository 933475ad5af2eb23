#include "frontend/fontMan.h"

#include <cstddef>

namespace kelvora::fontMan {

std::array<clsFont, purposeCount> fonts;

namespace {

bool isPurpose(std::int16_t type) { return 0 <= type && type < purposeCount; }

clsFont& fontOf(std::int16_t purpose) { return fonts[static_cast<std::size_t>(purpose)]; }

}  // namespace

void initFonts() {
  for (std::int16_t purpose = 0; purpose < purposeCount; ++purpose) {
    fontOf(purpose) = {};
    fontOf(purpose).init(purpose);
  }
}

void setFontColour(std::int16_t purpose, std::uint8_t channel, std::uint8_t value) {
  if (isPurpose(purpose)) fontOf(purpose).setColour(channel, value);
}

void setFontSize(std::int16_t purpose, std::int16_t size) {
  if (isPurpose(purpose)) fontOf(purpose).updateSize(size);
}

void showFontsToForm() {
  for (clsFont& font : fonts) font.showToForm();
}

Colour getFontColour(std::int16_t type) {
  if (type >= purposeCount) return RGB(255, 255, 255);
  return isPurpose(type) ? fontOf(type).getColour() : Colour{};
}

std::int16_t getFontSize(std::int16_t type) { return isPurpose(type) ? fontOf(type).getSize() : std::int16_t{0}; }

}  // namespace kelvora::fontMan
