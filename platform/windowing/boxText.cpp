#include "platform/windowing/boxText.h"

#include "base/codePage.h"

namespace kelvora {

namespace {

constexpr int rows = 24;
constexpr int columns = 60;        ///< characters in a line of a box, about
constexpr int maxWordLength = 96;  ///< the box becomes as wide as a word up to this length
constexpr int wordPiece = 32;
constexpr char16_t mayBreakHere = 0x200B;
constexpr char noBreakSpace = '\xA0';

bool isSpace(char character) {
  return character == ' ' || character == noBreakSpace || (character >= '\t' && character <= '\r');
}

}  // namespace

std::u16string boxText(std::string_view text) {
  // Twice the bytes that fit, because carriage returns are dropped.
  constexpr std::size_t enough = 2 * rows * columns;
  const std::string_view all = text.substr(0, enough);
  std::u16string shown;
  int row = 1;
  int column = 0;
  int word = 0;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all.substr(i, 2) == "\r\n") continue;
    const bool endsLine = all[i] == '\n';
    if (endsLine || ++column > columns) {
      column = endsLine ? 0 : 1;
      if (++row > rows) return shown + u"...";
    }
    word = isSpace(all[i]) ? 0 : word + 1;
    if (word > maxWordLength && word % wordPiece == 1) shown += mayBreakHere;
    shown += toUnicode(static_cast<unsigned char>(all[i]));
  }
  return text.size() > enough ? shown + u"..." : shown;
}

}  // namespace kelvora
