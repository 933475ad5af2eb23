#include "raster/textLine.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "raster/glyphCache.h"

namespace kelvora {

namespace {

// Adds a pixel to the row's last block, unless that lies elsewhere or has this pixel from an earlier glyph.
void addPixel(std::vector<TextLine::Block>& row, int x, std::uint8_t coverage) {
  const int offset = row.empty() ? -1 : x - row.back().x;
  if (offset < 0 || offset >= 4 || row.back().coverage.at(static_cast<std::size_t>(offset)) != 0) {
    row.push_back({x, {coverage}});
  } else {
    row.back().coverage.at(static_cast<std::size_t>(offset)) = coverage;
  }
}

}  // namespace

TextLine::TextLine(FontGlyphs& glyphs, std::string_view text) {
  std::map<int, std::vector<Block>> drawn;
  int pen = 0;
  for (const char character : text) {
    const Glyph& glyph = glyphs.glyph(static_cast<unsigned char>(character));
    const std::uint8_t* coverage = glyph.coverage.data();
    for (int row = 0; row < glyph.height; ++row) {
      for (int column = 0; column < glyph.width; ++column, ++coverage) {
        if (*coverage != 0) addPixel(drawn[glyph.top + row], pen + glyph.left + column, *coverage);
      }
    }
    pen += glyph.advance;
  }
  for (const auto& [y, added] : drawn) {
    for (const Block& block : added) {
      left = blocks.empty() ? block.x : std::min(left, block.x);
      right = blocks.empty() ? block.x + 3 : std::max(right, block.x + 3);
      blocks.push_back(block);
    }
    rows.push_back({y, blocks.size()});
  }
}

}  // namespace kelvora
