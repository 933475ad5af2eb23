#include "platform/win32/painter.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "platform/win32/gdiFonts.h"

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
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const RECT place = deviceRect({left, top, width, height}, scale_);
  const bool isWhole = scale_ == std::floor(scale_);
  SetStretchBltMode(dc_, isWhole ? COLORONCOLOR : HALFTONE);
  SetBrushOrgEx(dc_, 0, 0, nullptr);
  constexpr DWORD copy = 0x00CC0020;
  StretchDIBits(dc_, place.left, place.top, place.right - place.left, place.bottom - place.top, 0, 0, width, height,
                pixels.data(), &info, DIB_RGB_COLORS, copy);
}

void Painter::text(const Box& box, const std::wstring& text, const FontSpec& font, Colour colour, UINT flags) const {
  const HGDIOBJ before = SelectObject(dc_, gdiFont(font, scale_));
  SetBkMode(dc_, TRANSPARENT);
  SetTextColor(dc_, toColorRef(colour));
  RECT place = deviceRect(box, scale_);
  DrawTextW(dc_, text.c_str(), static_cast<int>(text.size()), &place, flags | DT_NOPREFIX | DT_EXPANDTABS);
  SelectObject(dc_, before);
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

void Painter::ellipse(const Box& box, Colour fill, Colour line, int lineWidth, bool isDotted) const {
  const RECT place = deviceRect(box, scale_);
  const int width = std::max(scaled(lineWidth, scale_), 1);
  const HPEN pen = CreatePen(isDotted && width == 1 ? PS_DOT : PS_SOLID, width, toColorRef(line));
  const HBRUSH brush = CreateSolidBrush(toColorRef(fill));
  const HGDIOBJ penBefore = SelectObject(dc_, pen);
  const HGDIOBJ brushBefore = SelectObject(dc_, brush);
  SetBkMode(dc_, TRANSPARENT);
  Ellipse(dc_, place.left, place.top, place.right, place.bottom);
  SelectObject(dc_, brushBefore);
  SelectObject(dc_, penBefore);
  DeleteObject(brush);
  DeleteObject(pen);
}

}  // namespace kelvora
