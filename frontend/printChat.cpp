#include <algorithm>
#include <cstddef>

#include "base/text.h"
#include "core/modMain.h"
#include "frontend/fontMan.h"

namespace kelvora {

namespace {

constexpr std::size_t longestLine = 90;    // characters
constexpr std::size_t shortestSplit = 80;  // characters, the blank included

}  // namespace

void printChat(const std::string& text, std::int16_t lineType) {
  const std::string trimmed = trimBlanks(text);
  auto& lines = modMain::chatLines;
  std::move_backward(lines.begin(), lines.end() - 1, lines.end());
  ChatLine& line = lines.front();
  line = {{}, fontMan::getFontColour(lineType), fontMan::getFontSize(lineType)};
  if (trimmed.size() <= longestLine) {
    line.text = trimmed;
    return;
  }
  const auto [first, rest] = splitChatLine(trimmed);
  line.text = first;
  // Quirk Q-043: the continuation is printed like any text, so it loses the blank ahead of its mark, and the mark
  // counts among the characters of its line.
  printChat(" > " + rest, lineType);
}

std::pair<std::string, std::string> splitChatLine(const std::string& text) {
  if (text.size() <= longestLine) return {};
  std::size_t length = longestLine;
  for (std::size_t p = longestLine; p >= shortestSplit; --p) {
    if (text[p - 1] == ' ') {
      length = p;
      break;
    }
  }
  return {text.substr(0, length), text.substr(length)};
}

}  // namespace kelvora
