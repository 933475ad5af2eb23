#include "raster/textLine.h"

#include <algorithm>
#include <cstddef>

#include "raster/glyphCache.h"

namespace kelvora {

// A text with changing numbers is laid out in every frame, so this allocates little.
TextLine::TextLine(FontGlyphs& glyphs, std::string_view text) {
  int top = 0;
  int bottom = 0;
  for (const char character : text) {
    const Glyph& glyph = glyphs.glyph(static_cast<unsigned char>(character));
    top = std::min(top, glyph.top);
    bottom = std::max(bottom, glyph.top + glyph.height);
  }
  for (int y = top; y < bottom; ++y) {
    const std::size_t firstOfRow = blocks.size();
    int pen = 0;
    for (const char character : text) {
      const Glyph& glyph = glyphs.glyph(static_cast<unsigned char>(character));
      const int row = y - glyph.top;
      if (row >= 0 && row < glyph.height) {
        const std::uint8_t* const coverage = glyph.coverage.data() + std::ptrdiff_t{row} * glyph.width;
        for (int column = 0; column < glyph.width; ++column) {
          if (coverage[column] != 0) add(firstOfRow, pen + glyph.left + column, coverage[column]);
        }
      }
      pen += glyph.advance;
    }
    if (blocks.size() > firstOfRow) rows.push_back({y, blocks.size()});
  }
  if (!blocks.empty()) left = right = blocks.front().x;
  for (const Block& block : blocks) {
    left = std::min(left, block.x);
    right = std::max(right, block.x + 3);
  }
}

void TextLine::add(std::size_t firstOfRow, int x, std::uint8_t coverage) {
  const int offset = blocks.size() == firstOfRow ? -1 : x - blocks.back().x;
  if (offset < 0 || offset >= 4 || blocks.back().coverage.at(static_cast<std::size_t>(offset)) != 0) {
    blocks.push_back({x, {coverage}});
  } else {
    blocks.back().coverage.at(static_cast<std::size_t>(offset)) = coverage;
  }
}

}  // namespace kelvora
