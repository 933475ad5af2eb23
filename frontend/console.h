#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace kelvora {

/// Prints a text on the console. All of the game's messages go through here. Line types: 0 public chat, 1 private sent,
/// 2 private received, 3 server message, 4 error, 5 and above white.
void printChat(const std::string& text, std::int16_t lineType);

/// Splits a text of more than 90 characters in two: after the last blank at position 80 to 90, or else at 90. Returns
/// two empty texts if no split is needed.
std::pair<std::string, std::string> splitChatLine(const std::string& text);

}  // namespace kelvora
