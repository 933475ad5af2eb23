#include <gtest/gtest.h>

#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

using Viewport = PaintTest;

TEST_F(Viewport, TheCentreIsHalfTheCanvasRoundedDown) {
  EXPECT_EQ(modMain::getCanvasCentre(), (Vector{5722, 4560}));
  canvas().Width = 1001;
  canvas().Height = 777;
  EXPECT_EQ(modMain::getCanvasCentre(), (Vector{500, 388})) << "read at every use";
}

TEST_F(Viewport, TheLocalPlayerIsAtTheCentre) {
  placeLocal(50000, 50000);
  EXPECT_EQ(modMain::worldToScreen({50000, 50000}), (Vector{5722, 4560}));
  EXPECT_EQ(modMain::worldToScreen({50100, 49000}), (Vector{5822, 3560}));
  EXPECT_EQ(modMain::worldToScreen({0, 100000}), (Vector{5722 - 50000, 4560 + 50000}));
}

TEST_F(Viewport, EachStepIsNarrowedToSinglePrecision) {
  placeLocal(99999.99F, 0);
  // 99999.99 is 99999.9921875 as a single, 1 / 1024 less than it needs is lost: 99999.9921875 - 0.001 narrows to the
  // same.
  EXPECT_EQ(modMain::worldToScreen({0.001F, 0}).x, 5722.0F - 99999.9921875F);
}

TEST_F(Viewport, APointExactlyOnTheEdgeIsOnTheCanvas) {
  placeLocal(50000, 50000);
  EXPECT_TRUE(modMain::isOnScreen({50000 - 5722, 50000 - 4560}));
  EXPECT_TRUE(modMain::isOnScreen({50000 + 5723, 50000 + 4560}));
  EXPECT_FALSE(modMain::isOnScreen({50000 - 5723, 50000}));
  EXPECT_FALSE(modMain::isOnScreen({50000 + 5724, 50000}));
  EXPECT_FALSE(modMain::isOnScreen({50000, 50000 - 4561}));
  EXPECT_FALSE(modMain::isOnScreen({50000, 50000 + 4561}));
}

TEST_F(Viewport, Q098TheCircleHas350Parts) {
  const Vector from{1000, 1000};
  EXPECT_NEAR(modMain::getBearing(from, {2000, 0}).angle, 43.75, 0.0001) << "45 degrees";
  EXPECT_NEAR(modMain::getBearing(from, {1000 + 1732.0508F, 0}).angle, 350.0 / 6, 0.0001) << "60 degrees";
  EXPECT_NEAR(modMain::getBearing(from, {2000, 1000}).angle, 87.5, 0.0001) << "a right angle";
  EXPECT_EQ(modMain::getBearing(from, {1000, 0}).angle, 0);
  EXPECT_NEAR(modMain::getBearing(from, {0, 2000}).angle, 43.75, 0.0001) << "never negative";
}

TEST_F(Viewport, QuadrantsRunCounterClockwiseFromUpperRight) {
  const Vector from{1000, 1000};
  EXPECT_EQ(modMain::getBearing(from, {1010, 990}).quadrant, 1);
  EXPECT_EQ(modMain::getBearing(from, {990, 990}).quadrant, 2);
  EXPECT_EQ(modMain::getBearing(from, {990, 1010}).quadrant, 3);
  EXPECT_EQ(modMain::getBearing(from, {1010, 1010}).quadrant, 4);
}

TEST_F(Viewport, Q091OnTheAxesTheQuadrantIsOne) {
  const Vector from{1000, 1000};
  for (const Vector to : {Vector{1000, 0}, Vector{1000, 2000}, Vector{0, 1000}, Vector{2000, 1000}, from}) {
    EXPECT_EQ(modMain::getBearing(from, to).quadrant, 1);
  }
  EXPECT_EQ(modMain::getBearing(from, from).angle, 0);
}

}  // namespace
}  // namespace kelvora
