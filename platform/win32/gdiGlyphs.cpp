#include "platform/win32/gdiGlyphs.h"

#include <cstddef>
#include <span>

#include "base/codePage.h"
#include "platform/win32/gdiFonts.h"
#include "raster/picture.h"

namespace kelvora {

namespace {

bool isControl(wchar_t code) { return code < 0x20 || (code >= 0x7F && code <= 0x9F); }

/// A picture in memory that GDI can draw on. Starts black.
class Canvas {
 public:
  Canvas(HDC dc, int width, int height) : dc_(dc) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    before_ = SelectObject(dc, bitmap_);
    const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    pixels_ = {static_cast<const Pixel*>(bits), bits == nullptr ? 0 : count};
  }
  ~Canvas() {
    SelectObject(dc_, before_);
    DeleteObject(bitmap_);
  }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  std::span<const Pixel> pixels() const { return pixels_; }

 private:
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ before_;
  std::span<const Pixel> pixels_;
};

}  // namespace

Glyph GdiGlyphSource::glyph(const FontSpec& font, unsigned char character) {
  const FontMeasure measure(gdiFont(font, 1));
  const auto code = static_cast<wchar_t>(toUnicode(character));
  const wchar_t letter = isControl(code) ? L' ' : code;
  constexpr wchar_t noBreakSpace = 0xA0;
  Glyph result;
  result.advance = measure.width(&letter, 1);
  if (letter == L' ' || letter == noBreakSpace) return result;

  // Slanted and round letters reach beyond their advance.
  const int margin = measure.lineHeight() / 4 + 1;
  result.left = -margin;
  result.width = result.advance + 2 * margin;
  result.height = measure.lineHeight();
  const Canvas canvas(measure.dc(), result.width, result.height);
  constexpr COLORREF white = 0xFFFFFF;
  SetBkMode(measure.dc(), TRANSPARENT);
  SetTextColor(measure.dc(), white);
  TextOutW(measure.dc(), margin, 0, &letter, 1);
  GdiFlush();
  result.coverage.reserve(canvas.pixels().size());
  for (const Pixel pixel : canvas.pixels()) result.coverage.push_back(static_cast<std::uint8_t>(pixel >> 8));
  return result;
}

int GdiGlyphSource::lineHeight(const FontSpec& font) { return FontMeasure(gdiFont(font, 1)).lineHeight(); }

}  // namespace kelvora
