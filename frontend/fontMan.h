#pragma once

#include <array>
#include <cstdint>

#include "frontend/clsFont.h"
#include "raster/colour.h"

namespace kelvora {

/// Colour and size of the five line types that the player can style.
namespace fontMan {

inline constexpr std::int16_t purposeCount = 5;

extern std::array<clsFont, purposeCount> fonts;

/// Reads the fonts from the settings.
void initFonts();
/// Changes one channel of a purpose's colour. Ignores purposes outside 0 to 4.
void setFontColour(std::int16_t purpose, std::uint8_t channel, std::uint8_t value);
void setFontSize(std::int16_t purpose, std::int16_t size);
/// Updates the whole dialog. Loads it.
void showFontsToForm();
/// The colour and size (points) for a line type. From type 5 on they are white and 0, below type 0 black and 0.
Colour getFontColour(std::int16_t type);
std::int16_t getFontSize(std::int16_t type);

}  // namespace fontMan

}  // namespace kelvora
