#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>

#include "frontend/clsFont.h"
#include "raster/colour.h"

namespace kelvora {

/// The console: every line of text that the game has to tell goes through here. Line types: 0 public chat, 1 private
/// sent, 2 private received, 3 server message, 4 error, 5 and above white.
void printChat(const std::string& text, std::int16_t lineType);

/// Cuts a text of more than 90 characters in two: behind the last blank that stands at 80 to 90, else at 90. A text
/// that needs no cut gives two empty ones.
std::pair<std::string, std::string> splitChatLine(const std::string& text);

/// Colour and size of the five line types that the player can style.
namespace fontMan {

inline constexpr std::int16_t purposeCount = 5;

extern std::array<clsFont, purposeCount> fonts;

/// Reads the fonts from the settings store.
void initFonts();
/// A purpose outside 0 to 4 is ignored.
void setFontColour(std::int16_t purpose, std::uint8_t channel, std::uint8_t value);
void setFontSize(std::int16_t purpose, std::int16_t size);
/// Brings the whole dialog up to date. Loads it.
void showFontsToForm();
/// Of a line type: white and 0 from type 5 on, black and 0 below type 0.
Colour getFontColour(std::int16_t type);
std::int16_t getFontSize(std::int16_t type);

}  // namespace fontMan

}  // namespace kelvora
