#pragma once

#include "tests/rendering/paintTest.h"
#include "tests/support/golden.h"

namespace kelvora {

/// The client with the program's own sheets and the black canvas, for pictures that are kept in tests/golden.
class GoldenPainting : public PaintTest {
 protected:
  GoldenPainting() {
    machine.pictureSource = testPicture;
    canvas().BackColor = RGB(0, 0, 0);
    canvas().Cls();
    radar().BackColor = RGB(0, 0, 0);
    radar().setPicture(testPicture(machine.path + "/assets/radarGrid.png"));
    placeLocal();
  }

  /// A plain background on which a sprite's matte shows.
  void clearTo(Colour colour) {
    canvas().BackColor = colour;
    canvas().Cls();
  }
  /// White stripes of three pixels on black round the centre, so that both halves of a sprite's two copies show.
  void stripe() {
    canvas().Cls();
    canvas().ForeColor = RGB(255, 255, 255);
    canvas().DrawWidth = 3;
    for (float y = 4000; y <= 5200; y += 150) canvas().Line(5000, y, 6500, y);
    canvas().DrawWidth = 1;
  }
  /// The world's point that is seen at a pixel of the canvas.
  static Vector worldAt(int column, int row) {
    return {static_cast<float>(50000 - 5722 + 15 * column), static_cast<float>(50000 - 4560 + 15 * row)};
  }
  static Colour sheetPixel(const SheetImage& sheet, int column, int row) {
    const Picture& cells = sheet.cells();
    const Pixel pixel = cells.pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(cells.width) +
                                     static_cast<std::size_t>(column)];
    return RGB(static_cast<int>(pixel >> 16), static_cast<int>(pixel >> 8 & 255), static_cast<int>(pixel & 255));
  }
  /// A background, then the matte with AND and the image with OR.
  static Colour laid(Colour under, Colour matte, Colour image) {
    return RGB((under.red & matte.red) | image.red, (under.green & matte.green) | image.green,
               (under.blue & matte.blue) | image.blue);
  }
  /// The same with OR and AND.
  static Colour laidExchanged(Colour under, Colour matte, Colour image) {
    return RGB((under.red | matte.red) & image.red, (under.green | matte.green) & image.green,
               (under.blue | matte.blue) & image.blue);
  }
};

}  // namespace kelvora
