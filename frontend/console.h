#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace kelvora {

/// The kind of a console line. The types up to Error are the purposes of fontMan; Plain and above are white.
enum class LineType : std::int16_t { PublicChat, PrivateSent, PrivateReceived, ServerMessage, Error, Plain };

/// Prints a text on the console. All of the game's messages go through here.
void printChat(const std::string& text, LineType lineType);

/// Splits a text of more than 90 characters in two: after the last blank at position 80 to 90, or else at 90. Returns
/// two empty texts if no split is needed.
std::pair<std::string, std::string> splitChatLine(const std::string& text);

}  // namespace kelvora
