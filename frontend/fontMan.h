#pragma once

#include <cstdint>
#include <string>

#include "raster/colour.h"

namespace kelvora {

/// The console: every line of text that the game has to tell goes through here. Line types: 0 public chat, 1 private
/// sent, 2 private received, 3 server message, 4 error, 5 and above white.
void printChat(const std::string& text, std::int16_t lineType);

}  // namespace kelvora
