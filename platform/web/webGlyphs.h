#pragma once

#include "raster/font.h"

namespace kelvora {

/// Glyphs of the page's fonts, in shades of grey.
class WebGlyphSource : public GlyphSource {
 public:
  Glyph glyph(const FontSpec& font, unsigned char character) override;
  int lineHeight(const FontSpec& font) override;
};

}  // namespace kelvora
