#include "frontend/console.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "core/modMain.h"
#include "frontend/fontMan.h"

namespace kelvora {

namespace {

constexpr std::size_t maxLineLength = 90;  // characters
constexpr std::size_t minSplit = 80;       // characters, including the blank

void pushLine(std::string text, LineType lineType) {
  auto& lines = modMain::world.chatLines;
  std::move_backward(lines.begin(), lines.end() - 1, lines.end());
  const auto purpose = static_cast<std::int16_t>(lineType);
  lines.front() = {std::move(text), fontMan::getFontColour(purpose), fontMan::getFontSize(purpose)};
}

}  // namespace

void printChat(const std::string& text, LineType lineType) {
  const std::string trimmed = trimBlanks(text);
  std::string_view rest = trimmed;
  std::string_view mark;
  while (mark.size() + rest.size() > maxLineLength) {
    // A line's end depends on its first 90 characters only, so this needn't copy the rest of a long text every time.
    const std::string window = std::string(mark).append(rest.substr(0, maxLineLength + 1));
    std::string first = splitChatLine(window).first;
    rest.remove_prefix(first.size() - mark.size());
    pushLine(std::move(first), lineType);
    // Quirk Q-043: a continuation is printed like any text, as " > " and the rest. So it loses the leading blank, and
    // the mark counts towards its 90 characters.
    mark = "> ";
  }
  pushLine(std::string(mark).append(rest), lineType);
}

std::pair<std::string, std::string> splitChatLine(const std::string& text) {
  if (text.size() <= maxLineLength) return {};
  std::size_t length = maxLineLength;
  for (std::size_t p = maxLineLength; p >= minSplit; --p) {
    if (text[p - 1] == ' ') {
      length = p;
      break;
    }
  }
  return {text.substr(0, length), text.substr(length)};
}

}  // namespace kelvora
