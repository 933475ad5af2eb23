#pragma once

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "raster/font.h"

namespace kelvora {

/// The glyphs of one font, each taken from the source when it is first wanted.
class FontGlyphs {
 public:
  FontGlyphs(GlyphSource& source, FontSpec font);

  const FontSpec& font() const { return font_; }
  int lineHeight() const { return lineHeight_; }  ///< pixels
  /// Its coverage has width times height bytes, whatever the source gave.
  const Glyph& glyph(unsigned char character);

 private:
  GlyphSource& source_;
  FontSpec font_;
  int lineHeight_;
  std::array<std::optional<Glyph>, 256> glyphs_;
};

/// The fonts printed or measured so far. A reference it gave is good until the source changes.
class GlyphCache {
 public:
  /// Forgets all glyphs; null for no source.
  void setSource(GlyphSource* source);
  /// Null if there is no source.
  FontGlyphs* find(const FontSpec& font);

 private:
  GlyphSource* source_ = nullptr;
  std::vector<std::unique_ptr<FontGlyphs>> fonts_;
};

/// The one cache that all surfaces print from.
GlyphCache& glyphCache();

}  // namespace kelvora
