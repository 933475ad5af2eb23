#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "raster/font.h"
#include "raster/picture.h"
#include "raster/pixelArea.h"
#include "raster/pixelStore.h"
#include "raster/twips.h"

namespace kelvora {

struct TextLine;

/// How a raster copy combines source and destination.
enum class RasterOperation : std::uint32_t {
  SRCAND = 0x8800C6,    ///< destination AND source
  SRCPAINT = 0xEE0086,  ///< destination OR source
  SRCCOPY = 0xCC0020,   ///< source
};
using enum RasterOperation;

/// One of a sprite's two copies: the source's cell, whose corner is in twips, and how it is combined.
struct SpriteCopy {
  const Picture& source;
  float left;
  float top;
  RasterOperation operation;
};

/// The picture being drawn: a 32-bit image in memory with the game's drawing operations. Coordinates and lengths are in
/// twips, line widths in pixels. Everything is clipped to the image, and only glyphs are antialiased. The same calls
/// give the same bytes on every machine, except for glyphs.
class Surface {
 public:
  Colour BackColor = RGB(0, 0, 0);
  Colour ForeColor = RGB(0, 0, 0);
  Colour FillColor = RGB(0, 0, 0);
  int DrawWidth = 1;  ///< pixels; drawing clamps it to 1 to 64
  FontSpec Font;
  float FontSize = 9;  ///< points; used by `Print` instead of the size in Font
  float CurrentX = 0;  ///< twips, pen position of `Print`
  float CurrentY = 0;  ///< twips

  /// Resizes the image (pixels; negative counts as 0) and clears it as `Cls` does.
  void resize(int width, int height);
  int pixelWidth() const { return width_; }
  int pixelHeight() const { return height_; }
  std::span<const Pixel> pixels() const {
    return showsBackground_ ? std::span<const Pixel>(background_->pixels) : pixels_.all();
  }

  static constexpr int tileWidth = 16;  ///< pixels
  /// The areas that may have changed since the previous call; the whole image at first. They are disjoint, and ordered
  /// by rows of equal height, then from left to right. Each begins and ends at a multiple of `tileWidth` or at the
  /// image's edge. Valid until the next call.
  std::span<const PixelArea> takeChanges();

  /// Sets the background that `Cls` restores at the top left corner; null for none. Clears at once.
  void setBackground(PicturePointer picture);
  const PicturePointer& background() const { return background_; }

  /// Clears to the background, or BackColor, and moves the pen to 0, 0.
  void Cls();

  /// Draws a line in ForeColor, DrawWidth pixels wide, with round ends and including both end points. Its direction
  /// makes no difference. Clipping parts beyond a million pixels doesn't change its slope. A line of width 1 covers the
  /// pixel nearest to it in each column, or in each row if it is steep. Of two equally near pixels it covers the lower
  /// one, or the right one if it is steep. A line of width w > 1 covers the pixels whose centres lie within w / 2 of
  /// the segment between the centres of the two end pixels. For an even w that segment is moved half a pixel up and
  /// left.
  void Line(float x1, float y1, float x2, float y2);

  /// Draws a circle filled with FillColor and with an outline one pixel wide. It covers the pixels nearer to the centre
  /// than the radius plus half a pixel. Those with a neighbour outside (left, right, above or below) are the outline. A
  /// radius that rounds to 0 draws one pixel, a negative one nothing.
  void Circle(float x, float y, float radius, Colour outline);

  /// Copies the cell (sx, sy, w, h) of `source` to (x, y). Each number is converted to pixels separately. Parts outside
  /// the source or the image are skipped.
  void PaintPicture(const Picture& source, float x, float y, float w, float h, float sx, float sy,
                    RasterOperation operation);

  /// Does the same as a `PaintPicture` of the matte and then one of the image, but in one pass over the pixels.
  void PaintSprite(const SpriteCopy& matte, const SpriteCopy& image, float x, float y, float w, float h);

  /// Prints text at the pen in ForeColor over the existing background. A line break ("\r\n") moves down one line, to
  /// the column where this text began. Afterwards the pen is at the left border, one line below the last. Does nothing
  /// without a glyph source.
  void Print(std::string_view text);

  /// Width in twips of a text's widest line in `font`; 0 without a glyph source.
  static float textWidth(const FontSpec& font, std::string_view text);

  /// Sets the source of glyphs, which must outlive all printing. The backend calls it once before anything is printed.
  /// Discards all glyphs of an earlier source.
  static void setGlyphSource(GlyphSource* source);
  /// The source set last; null for none.
  static GlyphSource* glyphSource();

 private:
  struct PixelPoint {
    int x;
    int y;
  };
  /// Marks the pixels from (left, top) to (right, bottom) as about to be drawn on. Clips them to the image.
  void touch(int left, int top, int right, int bottom) {
    if (showsBackground_) copyBackground();
    mark(touched_, left, top, right, bottom);
  }
  void copyBackground();
  void mark(std::vector<std::uint64_t>& tiles, int left, int top, int right, int bottom) const;
  /// Marks all pixels, for a clear that also changes untouched ones.
  void touchAll();
  /// Clears the touched tiles in the row of tiles that begins at pixel row `row`, and resets their bits.
  void clearTouched(int row, std::uint64_t* words);
  void clearSmallDiscs();
  /// Draws a line that lies entirely in the image. Otherwise returns false and draws nothing.
  bool drawWhole(const TextLine& line, PixelPoint pen, Pixel ink);
  void drawGlyph(const Glyph& glyph, PixelPoint corner, Pixel ink);

  int width_ = 0;
  int height_ = 0;
  PixelStore pixels_;
  // One bit per tile, each row of tiles in whole words, for tiles drawn on since the last Cls. Untouched tiles are
  // still clear.
  std::vector<std::uint64_t> touched_;
  // Tiles that differed from the cleared image at the last call of takeChanges, and room for the current ones.
  std::vector<std::uint64_t> taken_;
  std::vector<std::uint64_t> drawn_;
  std::vector<PixelArea> changes_;
  int wordsAcross_ = 0;
  Pixel clearedTo_ = 0;
  /// A disc with a radius of one or two pixels, drawn since the last Cls. It touches no tile and is cleared the way it
  /// was drawn, because it covers only a small part of its tiles.
  struct SmallDisc {
    int centre;  // index of the pixel
    int radius;
  };
  std::vector<SmallDisc> smallDiscs_;
  PicturePointer background_;
  /// A background of the image's size stands for the image until something is drawn on it, so that a title picture
  /// takes its memory once.
  bool showsBackground_ = false;
};

}  // namespace kelvora
