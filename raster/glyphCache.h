#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "raster/font.h"
#include "raster/textLine.h"

namespace kelvora {

/// The glyphs of one font. Each is fetched from the source on first use.
class FontGlyphs {
 public:
  FontGlyphs(GlyphSource& source, FontSpec font);

  const FontSpec& font() const { return font_; }
  int lineHeight() const { return lineHeight_; }  ///< pixels
  /// The coverage has width times height bytes, whatever the source supplied.
  const Glyph& glyph(unsigned char character);
  /// The line laid out for drawing. Null if it is longer than 256 characters. Valid until the next call.
  const TextLine* line(std::string_view text);

 private:
  GlyphSource& source_;
  FontSpec font_;
  int lineHeight_;
  std::array<std::optional<Glyph>, 256> glyphs_;
  struct KnownLine {
    TextLine line;
    std::uint64_t lastUse;
  };
  std::map<std::string, KnownLine, std::less<>> lines_;
  std::uint64_t uses_ = 0;
};

/// The fonts printed or measured so far. References stay valid until the source changes.
class GlyphCache {
 public:
  /// Discards all glyphs and sets the source; null for none.
  void setSource(GlyphSource* source);
  GlyphSource* source() const { return source_; }
  /// Null if there is no source.
  FontGlyphs* find(const FontSpec& font);

 private:
  GlyphSource* source_ = nullptr;
  std::vector<std::unique_ptr<FontGlyphs>> fonts_;
};

/// The cache shared by all surfaces.
GlyphCache& glyphCache();

}  // namespace kelvora
