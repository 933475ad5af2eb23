#pragma once

#include <span>
#include <string>

#include "platform/widgets.h"
#include "platform/win32/win32.h"

namespace kelvora {

class PictureScaler;
struct PixelArea;

/// Position and size in the game's pixels, relative to a form's client area.
struct Box {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  bool contains(int x, int y) const { return x >= left && y >= top && x < left + width && y < top + height; }
};

/// The line around frames and labels.
inline constexpr Colour lineGrey = RGB(160, 160, 164);

/// Device pixels for this many of the game's.
int scaled(int pixels, double scale);

/// The device pixels that a box covers on a screen with this scale.
RECT deviceRect(const Box& box, double scale);

constexpr COLORREF toColorRef(Colour colour) {
  return static_cast<COLORREF>(colour.red | colour.green << 8 | colour.blue << 16);
}

/// Draws in the game's pixels on a device with any scale.
class Painter {
 public:
  Painter(HDC dc, double scale) : dc_(dc), scale_(scale) {}

  HDC dc() const { return dc_; }
  double scale() const { return scale_; }

  void fill(const Box& box, Colour colour) const;
  /// A line of one pixel along the inside.
  void border(const Box& box, Colour colour) const;
  /// Blends pixels if the scale isn't a whole number, because some would be twice as large as others.
  void picture(int left, int top, std::span<const Pixel> pixels, int width, int height) const;
  /// Draws only these areas of the picture. They look as in the whole picture.
  void pictureParts(int left, int top, std::span<const Pixel> pixels, int width, int height,
                    std::span<const PixelArea> areas) const;
  /// `flags` are those of `drawText`.
  void text(const Box& box, const std::wstring& text, const FontSpec& font, Colour colour, UINT flags) const;
  /// A check mark that fills the box.
  void tick(const Box& box, Colour colour) const;
  /// A disc in a square box, with a line around it. `lineWidth` is in pixels of the game.
  void circle(const Box& box, Colour fill, Colour line, int lineWidth, bool isDotted) const;

 private:
  /// Copies part of a picture of this width, pixel by pixel.
  void copy(POINT corner, std::span<const Pixel> pixels, int width, const PixelArea& area) const;
  /// `parts` are areas of the enlarged picture.
  void scaleParts(POINT corner, const PictureScaler& scaler, std::span<const Pixel> pixels,
                  std::span<const PixelArea> parts) const;

  HDC dc_;
  double scale_;
};

}  // namespace kelvora
