#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace kelvora {

/// The console: every line of text that the game has to tell goes through here. Line types: 0 public chat, 1 private
/// sent, 2 private received, 3 server message, 4 error, 5 and above white.
void printChat(const std::string& text, std::int16_t lineType);

/// Cuts a text of more than 90 characters in two: behind the last blank that stands at 80 to 90, else at 90. A text
/// that needs no cut gives two empty ones.
std::pair<std::string, std::string> splitChatLine(const std::string& text);

}  // namespace kelvora
