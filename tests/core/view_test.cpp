#include <gtest/gtest.h>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::getDistance;
using modMain::isOnScreen;

class View : public GameTest {};

TEST_F(View, TheCentreIsHalfTheCanvasRoundedDown) {
  EXPECT_EQ(modMain::getCanvasCentre(), (Vector{5722, 4560}));
  frmMain->canvas.Width = 1001;
  frmMain->canvas.Height = 777;
  EXPECT_EQ(modMain::getCanvasCentre(), (Vector{500, 388})) << "read at every use";
}

TEST_F(View, TheLocalPlayerIsAtTheCentre) {
  modMain::world.localPlayer.position = {50000, 50000};
  EXPECT_EQ(modMain::worldToScreen({50000, 50000}), (Vector{5722, 4560}));
  EXPECT_EQ(modMain::worldToScreen({50100, 49000}), (Vector{5822, 3560}));
  EXPECT_EQ(modMain::worldToScreen({0, 100000}), (Vector{5722 - 50000, 4560 + 50000}));
}

TEST_F(View, EachStepIsNarrowedToSinglePrecision) {
  modMain::world.localPlayer.position = {99999.99F, 0};
  // As a single, 99999.99 is 99999.9921875. Subtracting 0.001 is lost: the result narrows to the same single.
  EXPECT_EQ(modMain::worldToScreen({0.001F, 0}).x, 5722.0F - 99999.9921875F);
}

TEST_F(View, APointExactlyOnTheEdgeIsOnTheCanvas) {
  modMain::world.localPlayer.position = {50000, 50000};
  EXPECT_TRUE(isOnScreen({50000 - 5722, 50000 - 4560}));
  EXPECT_TRUE(isOnScreen({50000 + 5723, 50000 + 4560}));
  EXPECT_FALSE(isOnScreen({50000 - 5723, 50000}));
  EXPECT_FALSE(isOnScreen({50000 + 5724, 50000}));
  EXPECT_FALSE(isOnScreen({50000, 50000 - 4561}));
  EXPECT_FALSE(isOnScreen({50000, 50000 + 4561}));
}

TEST_F(View, Q098TheCircleHas350Parts) {
  const Vector from{1000, 1000};
  EXPECT_NEAR(modMain::getBearing(from, {2000, 0}).angle, 43.75, 0.0001) << "45 degrees";
  EXPECT_NEAR(modMain::getBearing(from, {1000 + 1732.0508F, 0}).angle, 350.0 / 6, 0.0001) << "60 degrees";
  EXPECT_NEAR(modMain::getBearing(from, {2000, 1000}).angle, 87.5, 0.0001) << "a right angle";
  EXPECT_EQ(modMain::getBearing(from, {1000, 0}).angle, 0);
  EXPECT_NEAR(modMain::getBearing(from, {0, 2000}).angle, 43.75, 0.0001) << "never negative";
}

TEST_F(View, QuadrantsRunCounterClockwiseFromUpperRight) {
  const Vector from{1000, 1000};
  EXPECT_EQ(modMain::getBearing(from, {1010, 990}).quadrant, 1);
  EXPECT_EQ(modMain::getBearing(from, {990, 990}).quadrant, 2);
  EXPECT_EQ(modMain::getBearing(from, {990, 1010}).quadrant, 3);
  EXPECT_EQ(modMain::getBearing(from, {1010, 1010}).quadrant, 4);
}

TEST_F(View, Q091BearingsAlongAnAxisAreInQuadrantOne) {
  const Vector from{1000, 1000};
  for (const Vector to : {Vector{1000, 0}, Vector{1000, 2000}, Vector{0, 1000}, Vector{2000, 1000}, from}) {
    EXPECT_EQ(modMain::getBearing(from, to).quadrant, 1);
  }
  EXPECT_EQ(modMain::getBearing(from, from).angle, 0);
}

TEST_F(View, ScreenIncludesTheCanvasEdge) {
  // The local player is at the canvas's centre: at the design size (5722, 4560) of 11445 by 9120.
  modMain::world.localPlayer.position = {50'000, 50'000};
  const float left = 50'000 - 5'722;
  const float top = 50'000 - 4'560;
  const float right = left + 11'445;
  const float bottom = top + 9'120;
  EXPECT_TRUE(isOnScreen({left, 50'000}));
  EXPECT_TRUE(isOnScreen({right, 50'000}));
  EXPECT_TRUE(isOnScreen({50'000, top}));
  EXPECT_TRUE(isOnScreen({50'000, bottom}));
  EXPECT_TRUE(isOnScreen({left, top}));
  EXPECT_TRUE(isOnScreen({right, bottom}));
  EXPECT_FALSE(isOnScreen({left - 1, 50'000}));
  EXPECT_FALSE(isOnScreen({right + 1, 50'000}));
  EXPECT_FALSE(isOnScreen({50'000, top - 1}));
  EXPECT_FALSE(isOnScreen({50'000, bottom + 1}));
}

TEST_F(View, Distance) {
  EXPECT_EQ(getDistance({0, 0}, {3, 4}), 5.0F);
  EXPECT_EQ(getDistance({10, -4}, {-2, 1}), 13.0F);
  EXPECT_EQ(getDistance({7, 7}, {7, 7}), 0.0F);
  EXPECT_EQ(getDistance({0, 0}, {100'000, 100'000}), 141'421.36F);
}

TEST_F(View, DistanceIsComputedInDoublesAndNarrowedToASingle) {
  // Squares in single precision would make it 24582.998.
  EXPECT_EQ(getDistance({0, 0}, {4'433, 24'180}), 24'583.0F);
  // 499.9999957 is nearer to 500 than to the single below it.
  EXPECT_EQ(getDistance({0, 0}, {139.99998F, 480}), 500.0F);
  // 2^24 + 1 is not a single: the difference is narrowed to 2^24, and 16777216.9998 to an even number. With the
  // difference in double precision, 16777217.9998 would become 16777218.
  EXPECT_EQ(getDistance({16'777'216, 5'792}, {-1, 0}), 16'777'216.0F);
  EXPECT_EQ(getDistance({0, 16'777'216}, {5'792, -1}), 16'777'216.0F);
}

}  // namespace
}  // namespace kelvora
