#pragma once

#include "tests/rendering/paintTest.h"
#include "tests/support/golden.h"

namespace kelvora {

/// The client with the program's own sheets and a black canvas, for the pictures in tests/golden.
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

  /// Clears the canvas to a plain background on which a sprite's matte shows.
  void clearTo(Colour colour) {
    canvas().BackColor = colour;
    canvas().Cls();
  }
  /// Draws white stripes of three pixels on black around the centre, so that both copies of a sprite show.
  void stripe() {
    canvas().Cls();
    canvas().ForeColor = RGB(255, 255, 255);
    canvas().DrawWidth = 3;
    for (float y = 4000; y <= 5200; y += 150) canvas().Line(5000, y, 6500, y);
    canvas().DrawWidth = 1;
  }
  /// The world point at a pixel of the canvas.
  static Vector worldAt(int column, int row) {
    return {static_cast<float>(50000 - 5722 + 15 * column), static_cast<float>(50000 - 4560 + 15 * row)};
  }
  static Colour sheetPixel(const SheetImage& sheet, int column, int row) {
    const Picture& cells = sheet.cells();
    const Pixel pixel = cells.pixels[static_cast<std::size_t>(row) * static_cast<std::size_t>(cells.width) +
                                     static_cast<std::size_t>(column)];
    return RGB(static_cast<int>(pixel >> 16), static_cast<int>(pixel >> 8 & 255), static_cast<int>(pixel & 255));
  }
  /// The result of copying a matte with AND, then its image with OR, over a background.
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
