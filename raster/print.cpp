#include <algorithm>

#include "raster/glyphCache.h"
#include "raster/surface.h"

namespace kelvora {
namespace {

constexpr std::string_view lineBreak = "\r\n";

// Removes the first line from the text. After the last line the text is null.
std::string_view takeLine(std::string_view& text, bool& isLast) {
  const std::size_t end = text.find(lineBreak);
  isLast = end == std::string_view::npos;
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(isLast ? text.size() : end + lineBreak.size());
  return line;
}

// (ink a + paper (255 - a)) / 255 for each channel, rounded to the nearest.
Pixel blend(Pixel paper, Pixel ink, unsigned coverage) {
  const auto channel = [&](unsigned shift) {
    const unsigned sum = (ink >> shift & 0xFF) * coverage + (paper >> shift & 0xFF) * (255 - coverage);
    return (sum + 127) / 255 << shift;
  };
  return channel(16) | channel(8) | channel(0);
}

}  // namespace

void Surface::drawGlyph(const Glyph& glyph, PixelPoint corner, Pixel ink) {
  const int firstColumn = std::max(0, -corner.x);
  const int endColumn = std::min(glyph.width, width_ - corner.x);
  const int firstRow = std::max(0, -corner.y);
  const int endRow = std::min(glyph.height, height_ - corner.y);
  if (firstColumn >= endColumn || firstRow >= endRow) return;
  touch(corner.x + firstColumn, corner.y + firstRow, corner.x + endColumn - 1, corner.y + endRow - 1);
  for (int row = firstRow; row < endRow; ++row) {
    const std::uint8_t* const coverage = glyph.coverage.data() + std::ptrdiff_t{row} * glyph.width;
    Pixel* const line = pixels_.data() + std::ptrdiff_t{corner.y + row} * width_;
    for (int column = firstColumn; column < endColumn; ++column) {
      Pixel& pixel = line[corner.x + column];
      if (coverage[column] != 0) pixel = blend(pixel, ink, coverage[column]);
    }
  }
}

void Surface::Print(std::string_view text) {
  FontSpec font = Font;
  font.size = FontSize;
  FontGlyphs* const glyphs = glyphCache().find(font);
  if (glyphs == nullptr) return;
  const Pixel ink = toPixel(ForeColor);
  const int column = toPixels(CurrentX);
  const int top = toPixels(CurrentY);
  int lines = 0;
  for (bool isLast = false; !isLast; ++lines) {
    int pen = column;
    for (const char character : takeLine(text, isLast)) {
      const Glyph& glyph = glyphs->glyph(static_cast<unsigned char>(character));
      drawGlyph(glyph, {pen + glyph.left, top + lines * glyphs->lineHeight() + glyph.top}, ink);
      pen += glyph.advance;
    }
  }
  CurrentX = 0;
  CurrentY += static_cast<float>(lines * glyphs->lineHeight() * twipsPerPixel);
}

float Surface::textWidth(const FontSpec& font, std::string_view text) {
  FontGlyphs* const glyphs = glyphCache().find(font);
  if (glyphs == nullptr) return 0;
  int widest = 0;
  for (bool isLast = false; !isLast;) {
    int width = 0;
    for (const char character : takeLine(text, isLast)) {
      width += glyphs->glyph(static_cast<unsigned char>(character)).advance;
    }
    widest = std::max(widest, width);
  }
  return static_cast<float>(widest * twipsPerPixel);
}

void Surface::setGlyphSource(GlyphSource* source) { glyphCache().setSource(source); }

}  // namespace kelvora
