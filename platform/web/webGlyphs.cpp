#include "platform/web/webGlyphs.h"

#include <array>

#include "platform/web/page.h"
#include "platform/web/webPeer.h"

namespace kelvora {

Glyph WebGlyphSource::glyph(const FontSpec& font, unsigned char character) {
  constexpr std::size_t room = 512 * 512;  // pixels; the largest font has 200 to a side
  std::array<std::int32_t, 5> numbers{};
  Glyph result;
  result.coverage.resize(room);
  page_glyph(cssFont(font, font.size).c_str(), character, numbers.data(), result.coverage.data(), room);
  result.left = numbers[0];
  result.top = numbers[1];
  result.width = numbers[2];
  result.height = numbers[3];
  result.advance = numbers[4];
  result.coverage.resize(static_cast<std::size_t>(result.width * result.height));
  result.coverage.shrink_to_fit();
  return result;
}

int WebGlyphSource::lineHeight(const FontSpec& font) { return page_lineHeight(cssFont(font, font.size).c_str()); }

}  // namespace kelvora
