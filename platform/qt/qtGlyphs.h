#pragma once

#include "raster/font.h"

namespace kelvora {

/// Glyphs of the desktop's fonts, hinted to whole pixels, in shades of grey.
class QtGlyphSource : public GlyphSource {
 public:
  Glyph glyph(const FontSpec& font, unsigned char character) override;
  int lineHeight(const FontSpec& font) override;
};

}  // namespace kelvora
