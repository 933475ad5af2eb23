#include "rendering/actionIcons.h"

#include <gtest/gtest.h>

#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

class ActionIcons : public PaintTest {
 protected:
  ActionIcons() {
    Surface::setGlyphSource(&blocks);
    canvas().BackColor = RGB(0, 0, 0);
    canvas().Cls();
  }
  ~ActionIcons() override { Surface::setGlyphSource(nullptr); }
  Blocks blocks;
};

TEST_F(ActionIcons, Q135TheIconRowEndsShortOfTheRightEdge) {
  canvas().BackColor = RGB(255, 255, 255);
  canvas().Cls();
  modMain::paintActionIcons();
  // Icons of 615 by 630 every 640 units from 11445 - 6 * 665 = 7455, at 7620: the last ends at 7455 + 5 * 640 + 615 =
  // 11270.
  for (int slot = 0; slot < 6; ++slot) {
    const double left = 7455 + 640.0 * slot;
    const Colour icon = RGB(16, iconGreen + slot, 16);
    EXPECT_EQ(pixelAt(canvas(), left + 8, 7620.0), icon) << slot;
    EXPECT_EQ(pixelAt(canvas(), left + 600, 7620.0 + 615), icon) << slot;
    EXPECT_EQ(countPixels(canvas(), icon), 41 * 42) << slot;
  }
  EXPECT_EQ(pixelAt(canvas(), 11270.0 + 15, 7800.0), RGB(255, 255, 255));
  EXPECT_EQ(pixelAt(canvas(), 8000.0, 7605.0), RGB(255, 255, 255));
}

TEST_F(ActionIcons, OnANarrowCanvasTheRowIsClipped) {
  canvas().Width = 2000;
  canvas().BackColor = RGB(255, 255, 255);
  canvas().Cls();
  modMain::paintActionIcons();
  // It starts at 2000 - 3990 = -1990. Icon 4 at -70 is clipped, icon 5 at 570 is whole.
  EXPECT_EQ(countPixels(canvas(), RGB(16, iconGreen, 16)), 0);
  EXPECT_EQ(pixelAt(canvas(), 0.0, 7700.0), RGB(16, iconGreen + 3, 16));
  EXPECT_EQ(countPixels(canvas(), RGB(16, iconGreen + 4, 16)), 41 * 42);
}

TEST_F(ActionIcons, StockNumbersAreBelowTheIcons) {
  clsPlayer& player = placeLocal();
  for (std::size_t i = 0; i < 6; ++i) player.powerups[i].count = static_cast<std::int16_t>(i == 3 ? 12 : i);
  player.alive = false;  // dead or alive
  canvas().Cls();
  player.paintSelf();
  // At y 9120 - 780 = 8340, row 556.
  for (int slot = 0; slot < 6; ++slot) {
    const int left = toPixels(7455 + 640.0 * slot);
    EXPECT_EQ(pixelAt(canvas(), left, 556), cyan) << slot;
    EXPECT_EQ(pixelAt(canvas(), left - 1, 556), Colour{}) << "no leading blank";
    EXPECT_EQ(pixelAt(canvas(), left, 555), Colour{});
    EXPECT_EQ(pixelAt(canvas(), left + 6, 556) == cyan, slot == 3) << "two digits";
  }
}

TEST_F(ActionIcons, OpponentsHaveNoStockNumbers) {
  placeLocal();
  placeOpponent(yellowPlayer, 50000, 50000).paintSelf();
  EXPECT_EQ(countPixels(canvas(), RGB(0, 255, 255)), 0);
}

}  // namespace
}  // namespace kelvora
