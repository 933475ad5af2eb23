#include "platform/headless/blockGlyphs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace kelvora {

namespace {

constexpr int gridRows = 7;

struct BlockLetter {
  char character;
  std::string_view rows;  ///< from the top, '/' between rows; all rows of a letter have the same length
};

constexpr BlockLetter letters[] = {
    {'A', ".###./#...#/#...#/#####/#...#/#...#/#...#"},
    {'B', "####./#...#/#...#/####./#...#/#...#/####."},
    {'C', ".####/#..../#..../#..../#..../#..../.####"},
    {'D', "####./#...#/#...#/#...#/#...#/#...#/####."},
    {'E', "####/#.../#.../###./#.../#.../####"},
    {'F', "####/#.../#.../###./#.../#.../#..."},
    {'G', ".####/#..../#..../#..##/#...#/#...#/.####"},
    {'H', "#...#/#...#/#...#/#####/#...#/#...#/#...#"},
    {'I', "###/.#./.#./.#./.#./.#./###"},
    {'J', "..##/...#/...#/...#/...#/#..#/.##."},
    {'K', "#..#/#..#/#.#./##../#.#./#..#/#..#"},
    {'L', "#.../#.../#.../#.../#.../#.../####"},
    {'M', "#...#/##.##/#.#.#/#.#.#/#...#/#...#/#...#"},
    {'N', "#...#/##..#/##..#/#.#.#/#..##/#..##/#...#"},
    {'O', ".###./#...#/#...#/#...#/#...#/#...#/.###."},
    {'P', "####./#...#/#...#/####./#..../#..../#...."},
    {'Q', ".###./#...#/#...#/#...#/#.#.#/#..#./.##.#"},
    {'R', "####./#...#/#...#/####./#.#../#..#./#...#"},
    {'S', ".####/#..../#..../.###./....#/....#/####."},
    {'T', "#####/..#../..#../..#../..#../..#../..#.."},
    {'U', "#...#/#...#/#...#/#...#/#...#/#...#/.###."},
    {'V', "#...#/#...#/#...#/#...#/.#.#./.#.#./..#.."},
    {'W', "#...#/#...#/#...#/#.#.#/#.#.#/##.##/#...#"},
    {'X', "#...#/#...#/.#.#./..#../.#.#./#...#/#...#"},
    {'Y', "#...#/#...#/.#.#./..#../..#../..#../..#.."},
    {'Z', "#####/....#/...#./..#../.#.../#..../#####"},
    {'0', ".##./#..#/#.##/##.#/#..#/#..#/.##."},
    {'1', ".#./##./.#./.#./.#./.#./###"},
    {'2', ".##./#..#/...#/..#./.#../#.../####"},
    {'3', "###./...#/...#/.##./...#/...#/###."},
    {'4', "..#./.##./#.#./#.#./####/..#./..#."},
    {'5', "####/#.../###./...#/...#/#..#/.##."},
    {'6', ".##./#.../#.../###./#..#/#..#/.##."},
    {'7', "####/...#/...#/..#./..#./.#../.#.."},
    {'8', ".##./#..#/#..#/.##./#..#/#..#/.##."},
    {'9', ".##./#..#/#..#/.###/...#/...#/.##."},
    {'.', "./././././#/#"},
    {',', "../../../../.#/.#/#."},
    {':', "./#/#/./#/#/."},
    {';', "../.#/.#/../.#/.#/#."},
    {'!', "#/#/#/#/#/./#"},
    {'?', ".##./#..#/...#/..#./.#../..../.#.."},
    {'\'', "#/#/././././."},
    {'"', "#.#/#.#/.../.../.../.../..."},
    {'`', "#./.#/../../../../.."},
    {'-', ".../.../.../###/.../.../..."},
    {'_', "..../..../..../..../..../..../####"},
    {'+', ".../.../.#./###/.#./.../..."},
    {'=', ".../.../###/.../###/.../..."},
    {'*', ".../#.#/.#./###/.#./#.#/..."},
    {'/', "..#/..#/.#./.#./.#./#../#.."},
    {'\\', "#../#../.#./.#./.#./..#/..#"},
    {'|', "#/#/#/#/#/#/#"},
    {'(', ".#/#./#./#./#./#./.#"},
    {')', "#./.#/.#/.#/.#/.#/#."},
    {'[', "##/#./#./#./#./#./##"},
    {']', "##/.#/.#/.#/.#/.#/##"},
    {'{', ".##/.#./.#./#../.#./.#./.##"},
    {'}', "##./.#./.#./..#/.#./.#./##."},
    {'<', ".../..#/.#./#../.#./..#/..."},
    {'>', ".../#../.#./..#/.#./#../..."},
    {'#', ".#.#./.#.#./#####/.#.#./#####/.#.#./.#.#."},
    {'$', "..#../.####/#.#../.###./..#.#/####./..#.."},
    {'%', "#...#/...#./...#./..#../.#.../.#.../#...#"},
    {'&', ".#../#.#./#.#./.#../#.##/#.#./.#.#"},
    {'@', ".###./#...#/#.#.#/#.###/#.#../#..../.####"},
    {'^', ".#./#.#/.../.../.../.../..."},
    {'~', "...../...../.#..#/#.##./...../...../....."},
};

constexpr std::string_view unknownLetter = "####/#..#/#..#/#..#/#..#/#..#/####";
constexpr std::string_view blankLetter = ".../.../.../.../.../.../...";

constexpr bool isWholeGrid(std::string_view rows) {
  const std::size_t columns = rows.find('/');
  if (rows.size() != gridRows * (columns + 1) - 1) return false;
  for (std::size_t at = columns; at < rows.size(); at += columns + 1) {
    if (rows[at] != '/') return false;
  }
  return true;
}
static_assert(std::all_of(std::begin(letters), std::end(letters),
                          [](const BlockLetter& letter) { return isWholeGrid(letter.rows); }));

std::string_view rowsOf(unsigned char character) {
  if (character == ' ' || character == 160) return blankLetter;
  for (const BlockLetter& letter : letters) {
    if (static_cast<unsigned char>(letter.character) == character) return letter.rows;
  }
  return unknownLetter;
}

// Pixels of the em square at 96 dots per inch. Unreadable sizes, which come only from manipulated settings, become 12
// pixels as on the desktop.
int emPixels(const FontSpec& font) {
  constexpr float largest = 200;
  const float pixels = font.size * 96.0F / 72.0F;
  return pixels <= largest ? std::max(4, static_cast<int>(std::lround(pixels))) : 12;
}

}  // namespace

Glyph BlockGlyphs::glyph(const FontSpec& font, unsigned char character) {
  const bool small = character >= 'a' && character <= 'z';
  const unsigned char shape = small ? static_cast<unsigned char>(character - 'a' + 'A') : character;
  const std::string_view rows = rowsOf(shape);
  const int columns = static_cast<int>(std::min(rows.find('/'), rows.size()));

  const int em = emPixels(font);
  const int capitalHeight = em * 3 / 4;
  const int height = small ? capitalHeight * 2 / 3 : capitalHeight;
  const int bodyWidth = std::max(1, columns * height / gridRows);
  const int smear = font.bold ? std::max(1, em / 12) : 0;

  Glyph glyph;
  glyph.top = em / 8 + capitalHeight - height;
  glyph.width = bodyWidth + smear;
  glyph.height = height;
  glyph.advance = glyph.width + std::max(1, em / 8);
  glyph.coverage.assign(static_cast<std::size_t>(glyph.width) * static_cast<std::size_t>(height), 0);
  for (int y = 0; y < height; ++y) {
    const int row = y * gridRows / height;
    for (int x = 0; x < bodyWidth; ++x) {
      const int column = x * columns / bodyWidth;
      if (rows[static_cast<std::size_t>(row * (columns + 1) + column)] != '#') continue;
      for (int ink = x; ink <= x + smear; ++ink) {
        glyph.coverage[static_cast<std::size_t>(y * glyph.width + ink)] = 255;
      }
    }
  }
  return glyph;
}

int BlockGlyphs::lineHeight(const FontSpec& font) { return emPixels(font) * 5 / 4; }

}  // namespace kelvora
