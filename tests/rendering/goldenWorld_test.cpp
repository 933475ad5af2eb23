#include <gtest/gtest.h>

#include <vector>

#include "rendering/layers.h"
#include "tests/rendering/goldenPainting.h"

namespace kelvora {
namespace {

class GoldenWorld : public GoldenPainting {};

TEST_F(GoldenWorld, TheBordersPulse) {
  modMain::world.localPlayer.position = {0, 0};
  std::vector<Picture> pictures;
  for (int level = 1; level <= 4; ++level) {
    canvas().Cls();
    for (int frame = 0; frame < 10 && (frame == 0 || modMain::world.borderWidth != level); ++frame) {
      modMain::paintWorldBorder();
    }
    ASSERT_EQ(modMain::world.borderWidth, level);
    canvas().Cls();
    const auto counter = modMain::world.borderCounter;
    modMain::paintWorldBorder();
    ASSERT_EQ(modMain::world.borderWidth, level);
    modMain::world.borderCounter = counter;
    pictures.push_back(cropped(canvas(), {371, 294, 40, 40}));
  }
  // Eight pixels wide around row 304, moved up by half a pixel: 300 to 307.
  EXPECT_EQ(pixelAt(canvas(), 405, 299), Colour{});
  EXPECT_EQ(pixelAt(canvas(), 405, 300), RGB(255, 150, 150));
  EXPECT_EQ(pixelAt(canvas(), 405, 307), RGB(255, 150, 150));
  EXPECT_EQ(pixelAt(canvas(), 405, 308), Colour{});
  expectGolden("border", sideBySide(pictures, 4));
}

TEST_F(GoldenWorld, TheTwelvePointers) {
  // One position in each band of each quadrant, clockwise from straight up: 5, 25, 50 and 75 in the first quadrant.
  const Vector places[] = {{180, -2000}, {963, -2000}, {2505, -2000}, {2000, -458}, {2505, 2000},   {963, 2000},
                           {180, 2000},  {-963, 2000}, {-2505, 2000}, {-2000, 458}, {-2505, -2000}, {-963, -2000}};
  const Colour under = RGB(96, 96, 160);
  std::vector<Picture> pictures;
  for (int cell = 0; cell < 12; ++cell) {
    clearTo(under);
    modMain::world.mousePos = {5722 + places[cell].x, 4560 + places[cell].y};
    modMain::paintPointer();
    const int left = toPixels(modMain::world.mousePos.x - 183);
    const int top = toPixels(modMain::world.mousePos.y - 183);
    pictures.push_back(cropped(canvas(), {left, top, 24, 24}));
    // A cell starts at 367 twips times its number, and its matte is 367 lower.
    const int x = toPixels(367.0 * cell) + 12;
    EXPECT_EQ(pixelAt(canvas(), left + 12, top + 12),
              laid(under, sheetPixel(frmGfx->imgArrows, x, 24 + 12), sheetPixel(frmGfx->imgArrows, x, 12)))
        << cell;
  }
  expectGolden("pointers", sideBySide(pictures, 12));
}

}  // namespace
}  // namespace kelvora
