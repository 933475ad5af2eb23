#pragma once

#include "raster/font.h"

namespace kelvora {

/// A built-in face that needs no font files: block letters on a grid seven cells high, scaled to the asked size. The
/// same font and character give the same glyph on every machine; small letters are the capitals at two thirds.
class BlockGlyphs : public GlyphSource {
 public:
  Glyph glyph(const FontSpec& font, unsigned char character) override;
  int lineHeight(const FontSpec& font) override;
};

}  // namespace kelvora
