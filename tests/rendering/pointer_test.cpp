#include <gtest/gtest.h>

#include <cmath>

#include "rendering/pointer.h"
#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

class Pointer : public PaintTest {
 protected:
  /// Moves the mouse 3000 units in a direction: an angle on the scale of 350 from the vertical, in a quadrant.
  void point(double angle, int quadrant) {
    const double radians = angle * 6.283185308 / 350;
    const double across = 3000 * std::sin(radians) * (quadrant == 1 || quadrant == 4 ? 1 : -1);
    const double down = 3000 * std::cos(radians) * (quadrant == 3 || quadrant == 4 ? 1 : -1);
    modMain::world.mousePos = {static_cast<float>(5722 + across), static_cast<float>(4560 + down)};
  }
  /// The sheet's cell at the mouse, read from the image's red. The matte's blue must agree.
  int paintedFrame() {
    canvas().Cls();
    modMain::paintPointer();
    const Colour colour = pixelAt(canvas(), modMain::world.mousePos.x, modMain::world.mousePos.y);
    EXPECT_EQ(colour.green, pointerGreen);
    EXPECT_EQ(colour.red, colour.blue) << "image and matte come from the same column";
    return colour.red / 16 - 1;
  }
};

struct Row {
  int quadrant;
  int frames[4];
};

class PointerTable : public Pointer, public testing::WithParamInterface<Row> {};

TEST_P(PointerTable, Q128TheFrameFollowsTheBandsOfTheQuadrant) {
  const auto& [quadrant, frames] = GetParam();
  const double angles[4][2] = {{0.5, 14.9}, {15.1, 39.9}, {40.1, 59.9}, {60.1, 87.3}};
  for (int band = 0; band < 4; ++band) {
    for (const double angle : angles[band]) {
      point(angle, quadrant);
      EXPECT_EQ(paintedFrame(), frames[band]) << "quadrant " << quadrant << ", angle " << angle;
      EXPECT_EQ(modMain::world.steerQuadrant, quadrant);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Quadrants, PointerTable,
                         testing::Values(Row{1, {0, 1, 2, 3}}, Row{4, {6, 5, 4, 3}}, Row{3, {6, 7, 8, 9}},
                                         Row{2, {0, 11, 10, 9}}));

TEST_P(PointerTable, AngleOnABoundFallsIntoTheBandAbove) {
  const auto& [quadrant, frames] = GetParam();
  const float bounds[] = {15, 40, 60};
  for (int i = 0; i < 3; ++i) {
    const auto number = static_cast<std::uint8_t>(quadrant);
    EXPECT_EQ(modMain::pointerFrame({bounds[i], number}), frames[i + 1]) << bounds[i];
    EXPECT_EQ(modMain::pointerFrame({std::nextafter(bounds[i], 0.0F), number}), frames[i]) << "just below";
  }
}

TEST_F(Pointer, MouseCanBeAtExactlyForty) {
  // 1091 to the right and 1248.75 up.
  modMain::world.mousePos = {6813, 3311.25F};
  ASSERT_EQ(modMain::getBearing({5722, 4560}, modMain::world.mousePos).angle, 40);
  EXPECT_EQ(paintedFrame(), 2);
  EXPECT_EQ(modMain::world.steerQuadrant, 1);
}

TEST_F(Pointer, HalvesAreRoundedToTheEvenAngle) {
  modMain::world.mousePos = {5872.25F, 3583};
  ASSERT_EQ(modMain::getBearing({5722, 4560}, modMain::world.mousePos).angle, 8.5F);
  modMain::paintPointer();
  EXPECT_EQ(modMain::getSteerAngle(), 8);
  modMain::world.mousePos = {6008.25F, 4481};
  ASSERT_EQ(modMain::getBearing({5722, 4560}, modMain::world.mousePos).angle, 72.5F);
  modMain::paintPointer();
  EXPECT_EQ(modMain::getSteerAngle(), 72);
}

TEST_F(Pointer, TheSteeringAngleIsRounded) {
  point(30.4, 1);
  modMain::paintPointer();
  EXPECT_EQ(modMain::getSteerAngle(), 30);
  point(30.6, 1);
  modMain::paintPointer();
  EXPECT_EQ(modMain::getSteerAngle(), 31);
}

TEST_F(Pointer, TheMouseOnTheCentrePointsUp) {
  modMain::world.mousePos = {5722, 4560};
  EXPECT_EQ(paintedFrame(), 0);
  EXPECT_EQ(modMain::world.steerAngle, 0);
  EXPECT_EQ(modMain::world.steerQuadrant, 1);
}

TEST_F(Pointer, Q091StraightLeftAndStraightBelowPointTheWrongWay) {
  modMain::world.mousePos = {5722 + 4000, 4560};
  EXPECT_EQ(paintedFrame(), 3);
  modMain::world.mousePos = {5722 - 4000, 4560};
  EXPECT_EQ(paintedFrame(), 3) << "to the right";
  modMain::world.mousePos = {5722, 4560 + 4000};
  EXPECT_EQ(paintedFrame(), 0) << "up";
  EXPECT_EQ(modMain::world.steerQuadrant, 1);
}

TEST_F(Pointer, SpriteIsCentredOnTheMouse) {
  modMain::world.mousePos = {3000, 3000};
  modMain::paintPointer();
  // A cell is 367 by 367 twips and starts 183 before the mouse: 2817, pixel 188; 24 pixels.
  EXPECT_EQ(pixelAt(canvas(), 187, 200), white);
  EXPECT_NE(pixelAt(canvas(), 188, 188), white);
  EXPECT_NE(pixelAt(canvas(), 211, 211), white);
  EXPECT_EQ(pixelAt(canvas(), 212, 200), white);
  EXPECT_EQ(pixelAt(canvas(), 200, 212), white);
}

TEST_F(Pointer, TheDirectionalLineFollowsTheMenu) {
  modMain::world.mousePos = {5722 + 3000, 4560};
  canvas().BackColor = RGB(0, 0, 0);
  const auto isLineDrawn = [this] {
    canvas().Cls();
    modMain::paintPointer();
    const Colour halfway = pixelAt(canvas(), 5722 + 1500.0, 4560.0);
    if (halfway == RGB(255, 255, 255)) {
      EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0), halfway) << "from the centre on";
      EXPECT_EQ(pixelAt(canvas(), 5722 + 1500.0, 4560.0 + 15), Colour{}) << "one pixel wide";
      return true;
    }
    return false;
  };
  EXPECT_FALSE(isLineDrawn()) << "never, as at the start";
  frmMain->mnuDirLineNever.Checked = false;
  EXPECT_FALSE(isLineDrawn()) << "none of the three";
  frmMain->mnuDirLineAlways.Checked = true;
  EXPECT_TRUE(isLineDrawn());
  frmMain->mnuDirLineNever.Checked = true;
  EXPECT_TRUE(isLineDrawn()) << "the third item is not read";
  frmMain->mnuDirLineAlways.Checked = false;
  frmMain->mnuDirLineClick.Checked = true;
  EXPECT_FALSE(isLineDrawn()) << "no button is held";
  frmMain->canvas.MouseMove(1, 0, 5722 + 3000, 4560);
  ASSERT_TRUE(frmMain->isLockMouse());
  modMain::world.mousePos = {5722 + 3000, 4560};
  EXPECT_TRUE(isLineDrawn());
}

TEST_F(Pointer, LineIsPaintedUnderTheSprite) {
  modMain::world.mousePos = {5722 + 3000, 4560};
  frmMain->mnuDirLineAlways.Checked = true;
  EXPECT_EQ(paintedFrame(), 3) << "no white shows through";
}

}  // namespace
}  // namespace kelvora
