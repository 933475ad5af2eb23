#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kelvora {

class FontGlyphs;

/// The glyphs of a line of text, laid out for drawing. Positions are pixels from the pen at the line's top left corner.
struct TextLine {
  TextLine(FontGlyphs& glyphs, std::string_view text);

  /// Four neighbouring pixels, the first of which is not blank. Where glyphs overlap, the later glyph has blocks of its
  /// own behind those of the earlier one.
  struct Block {
    int x;
    std::array<std::uint8_t, 4> coverage;
  };
  struct Row {
    int y;
    std::size_t end;  ///< index of the first block of the next row
  };

  std::vector<Block> blocks;  ///< row by row
  std::vector<Row> rows;      ///< from top to bottom
  // The smallest rectangle that contains all blocks. Meaningless without blocks.
  int left = 0;
  int right = 0;  ///< the last pixel's column

 private:
  /// Adds a pixel to the last block, unless that is before index `firstOfRow`, lies elsewhere, or has this pixel from
  /// an earlier glyph.
  void add(std::size_t firstOfRow, int x, std::uint8_t coverage);
};

}  // namespace kelvora
