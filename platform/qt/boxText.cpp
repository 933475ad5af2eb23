#include "platform/qt/boxText.h"

#include "platform/qt/codePage.h"

namespace kelvora {

namespace {

constexpr int rows = 24;
constexpr int columns = 60;      ///< characters; about what the toolkit's boxes have in a line
constexpr int longestWord = 96;  ///< the box is made as wide as a word up to this
constexpr int wordPiece = 32;

}  // namespace

QString boxText(std::string_view text) {
  constexpr QChar mayBreakHere(0x200B);
  // A carriage return may go, so that twice as many bytes hold all that is shown.
  constexpr std::size_t enough = 2 * rows * columns;
  const QString all = toQString(text.substr(0, enough)).replace("\r\n", "\n");
  QString shown;
  int row = 1;
  int column = 0;
  int word = 0;
  for (qsizetype i = 0; i < all.size(); ++i) {
    const bool endsLine = all[i] == '\n';
    if (endsLine || ++column > columns) {
      column = endsLine ? 0 : 1;
      if (++row > rows) return shown + "...";
    }
    word = all[i].isSpace() ? 0 : word + 1;
    if (word > longestWord && word % wordPiece == 1) shown += mayBreakHere;
    shown += all[i];
  }
  return text.size() > enough ? shown + "..." : shown;
}

}  // namespace kelvora
