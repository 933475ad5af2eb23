#pragma once

#include "raster/font.h"

namespace kelvora {

/// A built-in font without files: block letters on a grid seven cells high, scaled to the requested size. The same font
/// and character give the same glyph on every machine. Small letters are capitals at two thirds of the size.
class BlockGlyphs : public GlyphSource {
 public:
  Glyph glyph(const FontSpec& font, unsigned char character) override;
  int lineHeight(const FontSpec& font) override;
};

}  // namespace kelvora
