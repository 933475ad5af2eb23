#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "raster/surface.h"
#include "rendering/frmGfx.h"
#include "tests/support/gameTest.h"

namespace kelvora {

inline void PrintTo(const Colour& colour, std::ostream* out) {
  *out << "RGB(" << int{colour.red} << ", " << int{colour.green} << ", " << int{colour.blue} << ")";
}

inline void PrintTo(const Vector& point, std::ostream* out) { *out << "(" << point.x << ", " << point.y << ")"; }

/// The pixel at a column and row; black outside.
inline Colour pixelAt(const Surface& surface, int column, int row) {
  if (column < 0 || row < 0 || column >= surface.pixelWidth() || row >= surface.pixelHeight()) return {};
  const Pixel pixel = surface.pixels()[static_cast<std::size_t>(row) * static_cast<std::size_t>(surface.pixelWidth()) +
                                       static_cast<std::size_t>(column)];
  return RGB(static_cast<int>(pixel >> 16), static_cast<int>(pixel >> 8 & 255), static_cast<int>(pixel & 255));
}

/// The pixel at a position in twips.
inline Colour pixelAt(const Surface& surface, double x, double y) { return pixelAt(surface, toPixels(x), toPixels(y)); }

/// The number of pixels with this colour.
inline int countPixels(const Surface& surface, Colour colour) {
  int count = 0;
  for (const Pixel pixel : surface.pixels()) count += pixel == toPixel(colour) ? 1 : 0;
  return count;
}

/// Sheets whose cells are plain colours, so that a painted pixel identifies its sheet and cell. An image cell has 16 *
/// (column + 1) as red, the sheet's own green and no blue. A matte cell has 16 * (column + 1) as blue. On a white
/// surface, a sprite painted in the right order has the image's red and green and the matte's blue. The exchanged
/// operations show only the image.
PicturePointer plainSheet(const std::string& path);

/// The colour of a sprite painted on white.
constexpr Colour spriteOnWhite(int cell, int sheetGreen, int matteCell) {
  return RGB(16 * (cell + 1), sheetGreen, 16 * (matteCell + 1));
}
/// The same with the operations exchanged.
constexpr Colour exchangedOnWhite(int cell, int sheetGreen) { return RGB(16 * (cell + 1), sheetGreen, 0); }

inline constexpr int playerGreen = 16;  // plus the colour number
inline constexpr int arrowGreen = 32;   // plus the colour number
inline constexpr int shieldGreen = 64;
inline constexpr int ballsGreen = 80;
inline constexpr int pointerGreen = 96;
inline constexpr int blipGreen = 112;
inline constexpr int iconGreen = 128;  // plus the slot

/// Every character is a full block of 6 by 10 pixels, so a printed text is a plain rectangle. Records the requested
/// font sizes.
class Blocks : public GlyphSource {
 public:
  Glyph glyph(const FontSpec& font, unsigned char) override {
    sizes.push_back(font.size);
    return {0, 0, 6, 10, 6, std::vector<std::uint8_t>(60, 255)};
  }
  int lineHeight(const FontSpec&) override { return 14; }
  std::vector<float> sizes;
};

/// The client with plain sheets, on a white canvas and radar.
class PaintTest : public GameTest {
 protected:
  PaintTest();

  PictureBox& canvas() { return frmMain->canvas; }
  PictureBox& radar() { return frmMain->picRadar; }
  /// Puts the local player into the game: red, alive, brakes off, without opponents or particles.
  clsPlayer& placeLocal(float x = 50000, float y = 50000);
  /// Adds an opponent in the next slot.
  clsPlayer& placeOpponent(PlayerColour colour, float x, float y);
};

}  // namespace kelvora
