#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "raster/font.h"
#include "raster/picture.h"
#include "raster/pixelStore.h"
#include "raster/twips.h"

namespace kelvora {

/// How a raster copy joins source and destination.
enum class RasterOperation : std::uint32_t {
  SRCAND = 0x8800C6,    ///< destination AND source
  SRCPAINT = 0xEE0086,  ///< destination OR source
  SRCCOPY = 0xCC0020,   ///< source
};
using enum RasterOperation;

/// The picture under construction: a 32-bit image in memory with the drawing operations of the game. Coordinates and
/// lengths are twips, widths of lines are pixels. Everything is clipped to the image; nothing is antialiased but
/// glyphs. The same calls give the same bytes on every machine, glyphs aside.
class Surface {
 public:
  Colour BackColor = RGB(0, 0, 0);
  Colour ForeColor = RGB(0, 0, 0);
  Colour FillColor = RGB(0, 0, 0);
  int DrawWidth = 1;  ///< pixels, 1 to 64 as far as drawing is concerned
  FontSpec Font;
  float FontSize = 9;  ///< points; what `Print` uses in place of the size in Font
  float CurrentX = 0;  ///< twips, pen position of `Print`
  float CurrentY = 0;  ///< twips

  /// Gives the image a new size in pixels (negative counts as 0) and clears it as `Cls` does.
  void resize(int width, int height);
  int pixelWidth() const { return width_; }
  int pixelHeight() const { return height_; }
  std::span<const Pixel> pixels() const { return pixels_.all(); }

  /// The background that `Cls` restores at the top left corner; null for none. Clears at once.
  void setBackground(PicturePointer picture);
  const PicturePointer& background() const { return background_; }

  /// Clears to BackColor or to the background and puts the pen at 0, 0.
  void Cls();

  /// A line in ForeColor, DrawWidth pixels wide with round ends, both end points included; from which end it is drawn
  /// makes no difference. What lies beyond a million pixels is cut off, and the rest keeps its slope. Width 1 has the
  /// pixel nearest to the line in each column (row, if steep), halves downward (rightward). A greater width w has the
  /// pixels whose centres lie within w / 2 of the segment between the centres of the two end pixels; for an even w that
  /// segment is moved half a pixel up and left.
  void Line(float x1, float y1, float x2, float y2);

  /// A circle in `outline`, one pixel wide, filled with FillColor: the pixels nearer than the radius plus half a pixel,
  /// of which those with a neighbour outside (left, right, above or below) are the outline. A radius that rounds to 0
  /// is one pixel, a negative one nothing.
  void Circle(float x, float y, float radius, Colour outline);

  /// Copies the cell (sx, sy, w, h) of `source` to (x, y), each number turned into pixels by itself. What lies outside
  /// the source or the image is left out.
  void PaintPicture(const Picture& source, float x, float y, float w, float h, float sx, float sy,
                    RasterOperation operation);

  /// Text at the pen in ForeColor, the background left as it is. A line break ("\r\n") goes down one line and back to
  /// the column where this text began; at the end the pen stands at the left border, one line below the last. Without a
  /// glyph source nothing is printed and the pen stays.
  void Print(std::string_view text);

  /// Width of a text (of its widest line) in twips, as `Print` would set it in `font`; 0 without a glyph source.
  static float textWidth(const FontSpec& font, std::string_view text);

  /// Where glyphs come from; set once by the backend before anything is printed, and outliving all printing. Forgets
  /// every glyph taken from an earlier source.
  static void setGlyphSource(GlyphSource* source);

 private:
  struct PixelPoint {
    int x;
    int y;
  };
  /// Notes that the pixels from (left, top) to (right, bottom) are about to be drawn on; clipped here.
  void touch(int left, int top, int right, int bottom);
  void touchAll();
  /// Clears the touched tiles of the row of tiles that begins with pixel row `row`, and forgets them.
  void clearTouched(int row, std::uint64_t* words);
  void clearSmallDiscs();
  void drawGlyph(const Glyph& glyph, PixelPoint corner, Pixel ink);

  int width_ = 0;
  int height_ = 0;
  PixelStore pixels_;
  // One bit a tile, each row of tiles in whole words: something was drawn there since the last Cls. What was not
  // touched is clear already.
  std::vector<std::uint64_t> touched_;
  int wordsAcross_ = 0;
  Pixel clearedTo_ = 0;
  /// A disc of one or two pixels' radius drawn since the last Cls without touching a tile: it is cleared as it was
  /// drawn, for a particle is a small part of its tiles.
  struct SmallDisc {
    int centre;  // index of the pixel
    int radius;
  };
  std::vector<SmallDisc> smallDiscs_;
  PicturePointer background_;
};

}  // namespace kelvora
