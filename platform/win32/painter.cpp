#include "platform/win32/painter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <vector>

#include "platform/win32/circlePixels.h"
#include "platform/win32/gdiFonts.h"
#include "platform/win32/pictureScaler.h"
#include "platform/win32/textLines.h"

namespace kelvora {

int scaled(int pixels, double scale) { return static_cast<int>(std::lround(pixels * scale)); }

RECT deviceRect(const Box& box, double scale) {
  return {scaled(box.left, scale), scaled(box.top, scale), scaled(box.left + box.width, scale),
          scaled(box.top + box.height, scale)};
}

void Painter::fill(const Box& box, Colour colour) const {
  const RECT place = deviceRect(box, scale_);
  SetDCBrushColor(dc_, toColorRef(colour));
  FillRect(dc_, &place, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void Painter::border(const Box& box, Colour colour) const {
  const RECT place = deviceRect(box, scale_);
  const int line = std::max(scaled(1, scale_), 1);
  SetDCBrushColor(dc_, toColorRef(colour));
  const auto brush = static_cast<HBRUSH>(GetStockObject(DC_BRUSH));
  for (const RECT& side : {RECT{place.left, place.top, place.right, place.top + line},
                           RECT{place.left, place.bottom - line, place.right, place.bottom},
                           RECT{place.left, place.top, place.left + line, place.bottom},
                           RECT{place.right - line, place.top, place.right, place.bottom}}) {
    FillRect(dc_, &side, brush);
  }
}

void Painter::picture(int left, int top, std::span<const Pixel> pixels, int width, int height) const {
  if (width <= 0 || height <= 0) return;
  const RECT place = deviceRect({left, top, width, height}, scale_);
  RECT clip{};
  RECT part{};
  GetClipBox(dc_, &clip);
  if (IntersectRect(&part, &place, &clip) == 0) return;
  const PixelArea shown{part.left - place.left, part.top - place.top, part.right - part.left, part.bottom - part.top};
  if (scale_ == 1) return copy({place.left, place.top}, pixels, width, shown);
  scaleParts({place.left, place.top}, PictureScaler(width, height, place.right - place.left, place.bottom - place.top),
             pixels, {&shown, 1});
}

void Painter::pictureParts(int left, int top, std::span<const Pixel> pixels, int width, int height,
                           std::span<const PixelArea> areas) const {
  if (width <= 0 || height <= 0) return;
  const RECT place = deviceRect({left, top, width, height}, scale_);
  const POINT corner{place.left, place.top};
  if (scale_ == 1) {
    for (const PixelArea& area : areas) copy(corner, pixels, width, area);
    return;
  }
  const PictureScaler scaler(width, height, place.right - place.left, place.bottom - place.top);
  std::vector<PixelArea> shown;
  shown.reserve(areas.size());
  for (const PixelArea& area : areas) shown.push_back(scaler.reach(area));
  scaleParts(corner, scaler, pixels, shown);
}

void Painter::copy(POINT corner, std::span<const Pixel> pixels, int width, const PixelArea& area) const {
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -area.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const auto rows = static_cast<UINT>(area.height);
  SetDIBitsToDevice(dc_, corner.x + area.x, corner.y + area.y, static_cast<DWORD>(area.width), rows, area.x, 0, 0, rows,
                    &pixels[static_cast<std::size_t>(area.y) * static_cast<std::size_t>(width)], &info, DIB_RGB_COLORS);
}

void Painter::scaleParts(POINT corner, const PictureScaler& scaler, std::span<const Pixel> pixels,
                         std::span<const PixelArea> parts) const {
  constexpr int maxPixels = 64 * 1024;
  std::vector<Pixel> strip;
  for (const PixelArea& part : parts) {
    if (part.width <= 0) continue;
    const int stripHeight = std::max(maxPixels / part.width, 1);
    for (int y = 0; y < part.height; y += stripHeight) {
      const int height = std::min(stripHeight, part.height - y);
      strip.resize(static_cast<std::size_t>(part.width) * static_cast<std::size_t>(height));
      scaler.scale(pixels, {part.x, part.y + y, part.width, height}, strip);
      copy({corner.x + part.x, corner.y + part.y + y}, strip, part.width, {0, 0, part.width, height});
    }
  }
}

void Painter::text(const Box& box, const std::wstring& text, const FontSpec& font, Colour colour, UINT flags) const {
  drawText(dc_, deviceRect(box, scale_), text, gdiFont(font, scale_), colour, flags);
}

void Painter::tick(const Box& box, Colour colour) const {
  const RECT place = deviceRect(box, scale_);
  const LONG width = place.right - place.left;
  const LONG low = place.bottom - 1;
  const HPEN pen = CreatePen(PS_SOLID, std::max(scaled(2, scale_), 1), toColorRef(colour));
  const HGDIOBJ before = SelectObject(dc_, pen);
  const POINT corners[] = {
      {place.left, (place.top + place.bottom) / 2}, {place.left + width / 3, low}, {place.right - 1, place.top}};
  Polyline(dc_, corners, static_cast<int>(std::size(corners)));
  SelectObject(dc_, before);
  DeleteObject(pen);
}

void Painter::circle(const Box& box, Colour fill, Colour line, int lineWidth, bool isDotted) const {
  const RECT place = deviceRect(box, scale_);
  const Circle circle{(place.right - place.left - scale_) / 2, lineWidth * scale_, fill, line, isDotted};
  const int margin = static_cast<int>(std::ceil(circle.lineWidth / 2));
  const int side = static_cast<int>(place.right - place.left) + 2 * margin;
  const std::vector<std::uint32_t> pixels = circlePixels(circle, side);
  const HDC source = CreateCompatibleDC(dc_);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), side, -side, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(source, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bits != nullptr) std::memcpy(bits, pixels.data(), pixels.size() * sizeof pixels[0]);
  const HGDIOBJ before = SelectObject(source, bitmap);
  GdiAlphaBlend(dc_, place.left - margin, place.top - margin, side, side, source, 0, 0, side, side,
                {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA});
  SelectObject(source, before);
  DeleteObject(bitmap);
  DeleteDC(source);
}

}  // namespace kelvora
