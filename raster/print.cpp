#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#ifdef __wasm_simd128__
#include <wasm_simd128.h>
#endif

#include "base/bitCast.h"
#include "raster/glyphCache.h"
#include "raster/spans.h"
#include "raster/surface.h"
#include "raster/textLine.h"

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

// `blend` for several channels in 16 bits each. By reference, because each machine returns wide values differently.
template <class Wide>
[[gnu::always_inline]] inline void blendChannels(Wide& paper, const Wide& ink, const Wide& coverage) {
  // At most 255 * 255 + 127. The difference may wrap, but the sum doesn't.
  const Wide sum = coverage * (ink - paper) + paper * 255 + 127;
  paper = (sum + 1 + (sum >> 8)) >> 8;  // sum / 255
}

// spreadInk and blendBlock: `blend` for a block of four pixels. It writes pixels without coverage back as they are.
#if defined(__wasm_simd128__)
// Browsers turn these operations into one instruction each, and the code below into several slow ones.
using WideChannels [[gnu::vector_size(16)]] = std::uint16_t;  // of two pixels

void spreadInk(WideChannels& result, Pixel ink) {
  result = bitCast<WideChannels>(wasm_u16x8_extend_low_u8x16(wasm_i32x4_splat(static_cast<int>(ink))));
}

void blendBlock(Pixel* target, const std::array<std::uint8_t, 4>& coverage, const WideChannels& ink) {
  const v128_t four = wasm_v128_load32_zero(coverage.data());
  const v128_t share = wasm_i8x16_shuffle(four, four, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3);
  const v128_t paper = wasm_v128_load(target);
  auto low = bitCast<WideChannels>(wasm_u16x8_extend_low_u8x16(paper));
  auto high = bitCast<WideChannels>(wasm_u16x8_extend_high_u8x16(paper));
  blendChannels(low, ink, bitCast<WideChannels>(wasm_u16x8_extend_low_u8x16(share)));
  blendChannels(high, ink, bitCast<WideChannels>(wasm_u16x8_extend_high_u8x16(share)));
  wasm_v128_store(target, wasm_u8x16_narrow_i16x8(bitCast<v128_t>(low), bitCast<v128_t>(high)));
}
#else
// The channels of four pixels, in two widths.
using Channels [[gnu::vector_size(16)]] = std::uint8_t;
using WideChannels [[gnu::vector_size(32)]] = std::uint16_t;

[[gnu::always_inline]] inline void spreadInk(WideChannels& result, Pixel ink) {
  Channels narrow;
  const Block fourInks = {ink, ink, ink, ink};
  std::memcpy(&narrow, &fourInks, sizeof(narrow));
  result = __builtin_convertvector(narrow, WideChannels);
}

[[gnu::always_inline]] inline void blendBlock(Pixel* target, const std::array<std::uint8_t, 4>& coverage,
                                              const WideChannels& ink) {
  using Pixels [[gnu::vector_size(16)]] = std::uint32_t;
  const Pixels spread = {coverage[0], coverage[1], coverage[2], coverage[3]};
  const auto share = bitCast<Channels>(spread * 0x01010101U);
  Channels paper;
  std::memcpy(&paper, target, sizeof(paper));
  WideChannels mixed = __builtin_convertvector(paper, WideChannels);
  const WideChannels part = __builtin_convertvector(share, WideChannels);
  blendChannels(mixed, ink, part);
  const Channels result = __builtin_convertvector(mixed, Channels);
  std::memcpy(target, &result, sizeof(result));
}
#endif

// `pen` is the index of the pixel at the pen, which may lie outside the image.
[[gnu::always_inline]] inline void blendLine(const TextLine& line, Pixel* image, std::ptrdiff_t pen,
                                             std::ptrdiff_t pitch, Pixel ink) {
  WideChannels inks;
  spreadInk(inks, ink);
  const TextLine::Block* block = line.blocks.data();
  for (const TextLine::Row& row : line.rows) {
    const std::ptrdiff_t start = pen + row.y * pitch;
    for (const TextLine::Block* const end = line.blocks.data() + row.end; block != end; ++block) {
      blendBlock(image + (start + block->x), block->coverage, inks);
    }
  }
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] void blendLineWide(const TextLine& line, Pixel* image, std::ptrdiff_t pen, std::ptrdiff_t pitch,
                                           Pixel ink) {
  blendLine(line, image, pen, pitch, ink);
}
#else
void blendLineWide(const TextLine&, Pixel*, std::ptrdiff_t, std::ptrdiff_t, Pixel) {}
#endif
void blendLineNarrow(const TextLine& line, Pixel* image, std::ptrdiff_t pen, std::ptrdiff_t pitch, Pixel ink) {
  blendLine(line, image, pen, pitch, ink);
}

}  // namespace

bool Surface::drawWhole(const TextLine& line, PixelPoint pen, Pixel ink) {
  if (line.blocks.empty()) return true;
  const int top = pen.y + line.rows.front().y;
  const int bottom = pen.y + line.rows.back().y;
  const int left = pen.x + line.left;
  const int right = pen.x + line.right;
  if (left < 0 || right >= width_ || top < 0 || bottom >= height_) return false;
  touch(left, top, right, bottom);
  const auto blend = hasWideRegisters ? blendLineWide : blendLineNarrow;
  blend(line, pixels_.data(), std::ptrdiff_t{pen.y} * width_ + pen.x, width_, ink);
  return true;
}

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
    PixelPoint pen{column, top + lines * glyphs->lineHeight()};
    const std::string_view line = takeLine(text, isLast);
    if (const TextLine* const ready = glyphs->line(line); ready && drawWhole(*ready, pen, ink)) continue;
    for (const char character : line) {
      const Glyph& glyph = glyphs->glyph(static_cast<unsigned char>(character));
      drawGlyph(glyph, {pen.x + glyph.left, pen.y + glyph.top}, ink);
      pen.x += glyph.advance;
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

GlyphSource* Surface::glyphSource() { return glyphCache().source(); }

}  // namespace kelvora
