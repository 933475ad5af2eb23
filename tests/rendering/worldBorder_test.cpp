#include <gtest/gtest.h>

#include <vector>

#include "rendering/layers.h"
#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

// The local player is at the world's corner, so two edges cross at the canvas's centre, pixel (381, 304).
class WorldBorder : public PaintTest {
 protected:
  WorldBorder() {
    canvas().BackColor = RGB(0, 0, 0);
    placeLocal(0, 0);
  }
  void paint() {
    canvas().Cls();
    modMain::paintWorldBorder();
  }
  int thickness(Colour colour) {
    int count = 0;
    for (int row = 0; row < canvas().pixelHeight(); ++row) count += pixelAt(canvas(), 600, row) == colour ? 1 : 0;
    return count;
  }
};

TEST_F(WorldBorder, Q125ThePulseCountsFramesAndTurnsSlowly) {
  std::vector<int> levels;
  for (int frame = 1; frame <= 50; ++frame) {
    modMain::world.frameTime = 100;  // the time scale makes no difference
    modMain::paintWorldBorder();
    levels.push_back(modMain::world.borderWidth);
  }
  std::vector<int> expected(4, 1);  // frames 1 to 4
  for (const int level : {2, 3, 4, 4, 3, 2, 1, 1, 2}) expected.insert(expected.end(), 5, level);
  expected.push_back(3);
  EXPECT_EQ(levels, expected);
}

TEST_F(WorldBorder, WidthAndColourFollowTheLevel) {
  // At level 1 the line is 2 pixels wide and pure red, at level 4 8 pixels and RGB(255, 150, 150).
  for (int level = 1; level <= 4; ++level) {
    modMain::world.borderWidth = static_cast<std::uint8_t>(level);
    modMain::world.borderCounter = 0;
    paint();
    EXPECT_EQ(thickness(RGB(255, (level - 1) * 50, (level - 1) * 50)), level * 2);
    EXPECT_EQ(canvas().DrawWidth, 1) << "left at 1";
  }
}

TEST_F(WorldBorder, EdgesRunFromCornerToCorner) {
  const Colour red = RGB(255, 0, 0);
  const struct {
    float x, y;
    bool left, right, up, down;  // the directions in which edges leave the centre
  } corners[] = {{0, 0, false, true, false, true},
                 {100000, 0, true, false, false, true},
                 {0, 100000, false, true, true, false},
                 {100000, 100000, true, false, true, false}};
  for (const auto& corner : corners) {
    modMain::world.borderWidth = 1;
    modMain::world.borderCounter = 0;
    modMain::world.localPlayer.position = {corner.x, corner.y};
    paint();
    EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0), red);
    EXPECT_EQ(pixelAt(canvas(), 100.0, 4560.0) == red, corner.left);
    EXPECT_EQ(pixelAt(canvas(), 11000.0, 4560.0) == red, corner.right);
    EXPECT_EQ(pixelAt(canvas(), 5722.0, 100.0) == red, corner.up);
    EXPECT_EQ(pixelAt(canvas(), 5722.0, 9000.0) == red, corner.down);
  }
}

TEST_F(WorldBorder, NothingIsDrawnFarFromTheEdges) {
  placeLocal(50000, 50000);
  paint();
  EXPECT_EQ(countPixels(canvas(), {}), canvas().pixelWidth() * canvas().pixelHeight());
}

TEST_F(WorldBorder, BeyondTheEdgeTheCanvasIsBlack) {
  canvas().BackColor = RGB(0, 0, 0);
  placeLocal(0, 50000);
  modMain::paintFrame();
  for (int row = 120; row < 380; row += 7) {
    for (int column = 250; column < 350; column += 5) {
      EXPECT_EQ(pixelAt(canvas(), column, row), Colour{}) << column << ", " << row;
    }
  }
}

}  // namespace
}  // namespace kelvora
