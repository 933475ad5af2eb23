#pragma once

#include "raster/font.h"

namespace kelvora {

/// Glyphs drawn by GDI, in grey levels and at the game's own size: the canvas is scaled as a whole.
class GdiGlyphSource : public GlyphSource {
 public:
  Glyph glyph(const FontSpec& font, unsigned char character) override;
  int lineHeight(const FontSpec& font) override;
};

}  // namespace kelvora
