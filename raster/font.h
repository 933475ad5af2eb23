#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kelvora {

/// A font that the game requests. The backend supplies the family or a free substitute.
struct FontSpec {
  std::string family = "MS Sans Serif";
  float size = 8.25F;  ///< points, 96 dots to the inch
  bool bold = false;

  friend bool operator==(const FontSpec&, const FontSpec&) = default;
};

/// The height in pixels of a font of this size in points. Sizes below 1 or above 200 pixels are 12 pixels.
int fontPixels(float points);

/// The shape of one character: coverage 0 to 255, row by row.
struct Glyph {
  int left = 0;     ///< pixels from the pen to the bitmap's left edge
  int top = 0;      ///< pixels from the line's top to the bitmap's top edge
  int width = 0;    ///< pixels
  int height = 0;   ///< pixels
  int advance = 0;  ///< pixels to the next pen position
  std::vector<std::uint8_t> coverage;
};

/// Supplies glyphs: the platform's fonts on the desktop, a built-in face when headless.
class GlyphSource {
 public:
  virtual ~GlyphSource() = default;
  /// A character of code page 1252.
  virtual Glyph glyph(const FontSpec& font, unsigned char character) = 0;
  /// Pixels from the top of one line to the top of the next.
  virtual int lineHeight(const FontSpec& font) = 0;
};

}  // namespace kelvora
