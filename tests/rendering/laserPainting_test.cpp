#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

// The canvas shows 5722 units to each side of the player and 4560 above and below.
class Laser : public PaintTest {
 protected:
  Laser() {
    canvas().BackColor = RGB(0, 0, 0);
    local = &placeLocal();
    local->powerups[laserSlot].active = true;
  }
  /// Paints after a flight along (dx, dy) in the last frame.
  void flyAndPaint(float dx, float dy) {
    local->lastPosition = {local->position.x - dx, local->position.y - dy};
    canvas().Cls();
    local->paintSelf();
  }
  /// True if the green core is within a pixel of a point, relative to the player.
  bool isBeamAt(double dx, double dy) {
    const int column = toPixels(5722 + dx);
    const int row = toPixels(4560 + dy);
    for (int i = 0; i < 9; ++i) {
      if (pixelAt(canvas(), column + i % 3 - 1, row + i / 3 - 1) == RGB(0, 255, 0)) return true;
    }
    return false;
  }
  clsPlayer* local;
};

struct Flight {
  float dx, dy;
  double ahead[2];   // a point on the beam
  double behind[2];  // the opposite point
};

class LaserDirections : public Laser, public testing::WithParamInterface<Flight> {};

TEST_P(LaserDirections, BeamPointsForwardAndNotBackward) {
  const Flight& flight = GetParam();
  flyAndPaint(flight.dx, flight.dy);
  EXPECT_TRUE(isBeamAt(flight.ahead[0], flight.ahead[1]));
  EXPECT_FALSE(isBeamAt(flight.behind[0], flight.behind[1]));
}

// Straight flights are tilted by one unit: for 300 up, a.x + 1 gives 1 to the left per 300, 10 per 3000. Straight to
// the right: a.y + 1 gives 1 up per 300.
INSTANTIATE_TEST_SUITE_P(
    Eight, LaserDirections,
    testing::Values(Flight{0, -300, {-10, -3000}, {10, 3000}}, Flight{200, -200, {3000, -3000}, {-3000, 3000}},
                    Flight{300, 0, {3000, -10}, {-3000, 10}}, Flight{200, 200, {3000, 3000}, {-3000, -3000}},
                    Flight{0, 300, {-10, 3000}, {10, -3000}}, Flight{-200, 200, {-3000, 3000}, {3000, -3000}},
                    Flight{-300, 0, {-3000, -10}, {3000, 10}}, Flight{-200, -200, {-3000, -3000}, {3000, 3000}}));

TEST_F(Laser, Q241StraightFlightsLeanByOneUnit) {
  // At 100 units per frame the beam leans by 1 in 100, so by 40 or 50 units over the 4000 and 5000 to the edge, at
  // least 2 pixels: flights up and down lean left, flights to the right and left lean up.
  local->position = {50000, 50000};
  flyAndPaint(0, -100);
  EXPECT_TRUE(isBeamAt(-40, -4000));
  EXPECT_FALSE(isBeamAt(0, -4000));
  flyAndPaint(0, 100);
  EXPECT_TRUE(isBeamAt(-40, 4000));
  EXPECT_FALSE(isBeamAt(0, 4000));
  flyAndPaint(100, 0);
  EXPECT_TRUE(isBeamAt(5000, -50));
  EXPECT_FALSE(isBeamAt(5000, 0));
  flyAndPaint(-100, 0);
  EXPECT_TRUE(isBeamAt(-5000, -50));
  EXPECT_FALSE(isBeamAt(-5000, 0));
}

TEST_F(Laser, TheTailLiesUnderTheBeamAndTheBeamUnderTheBall) {
  // Two tails of two vertices each cross the beam downwards: at 2250 to the right, and through the ball.
  const Vector place = local->position;
  const auto paintAcross = [&](float dx) {
    local->tails.clear();
    local->addTail({place.x + dx, place.y - 1500});
    local->addTail({place.x + dx, place.y + 1500});
    machine.scriptedDraws = {0};
    flyAndPaint(3000, 3);  // flat enough to stay in the row next to the centre's
    EXPECT_EQ(pixelAt(canvas(), 5722.0 + dx, 4560 - 900.0), RGB(255, 0, 0)) << "the tail is there";
  };
  paintAcross(2250);
  EXPECT_TRUE(isBeamAt(2200, 0));
  EXPECT_EQ(pixelAt(canvas(), 5722 + 2250.0, 4560.0), RGB(0, 255, 0));
  paintAcross(150);
  EXPECT_EQ(pixelAt(canvas(), 5722 + 150.0, 4560.0), RGB(16, playerGreen, 0)) << "the ball on the beam";
  EXPECT_EQ(pixelAt(canvas(), 5722 + 150.0, 4560 - 300.0), RGB(16, playerGreen, 0)) << "the ball on the tail";
}

TEST_F(Laser, APlayerAtRestHasNoBeamAndDrawsNoNumber) {
  machine.scriptedDraws = {0.5F};
  flyAndPaint(0, 0);
  EXPECT_EQ(countPixels(canvas(), RGB(0, 255, 0)), 0);
  EXPECT_EQ(machine.scriptedDraws.size(), 1U);
}

TEST_F(Laser, WhiteBeamOfRandomWidthHasAGreenCore) {
  const struct {
    float draw;
    int width;
  } table[] = {{0, 3}, {0.2F, 4}, {0.4F, 5}, {0.6F, 6}, {0.8F, 7}, {0.99F, 7}};
  for (const auto& [draw, width] : table) {
    machine.scriptedDraws = {draw};
    flyAndPaint(300, 0);
    // In a column at 2250 to the right, between ball and edge.
    int whites = 0;
    int greens = 0;
    for (int row = 280; row < 328; ++row) {
      const Colour colour = pixelAt(canvas(), toPixels(5722 + 2250), row);
      whites += colour == RGB(255, 255, 255) ? 1 : 0;
      greens += colour == RGB(0, 255, 0) ? 1 : 0;
    }
    EXPECT_EQ(greens, 2);
    EXPECT_EQ(whites + greens, width) << draw;
  }
}

TEST_F(Laser, TheBeamEndsAtTheWorldsEdge) {
  local->position = {50000, 3000};
  flyAndPaint(-200, -200);
  EXPECT_TRUE(isBeamAt(-2900, -2900));
  EXPECT_FALSE(isBeamAt(-3200, -3200)) << "beyond the upper edge at 3000";
  local->position = {97000, 50000};
  flyAndPaint(200, 200);
  EXPECT_TRUE(isBeamAt(2900, 2900));
  EXPECT_FALSE(isBeamAt(3200, 3200)) << "beyond the right edge";
}

TEST_F(Laser, Q131ACandidateIsTestedAgainstOnlyOneBound) {
  // From (99000, 50000) down to the right: slope 1, offset -49000. The upper edge is met at (49000, 0) and the left one
  // at (0, -49000), both behind the player. The lower edge is met at x 149000, above the bound; the right edge at
  // (100000, 51000).
  local->position = {99000, 50000};
  flyAndPaint(200, 200);
  EXPECT_TRUE(isBeamAt(900, 900));
  EXPECT_FALSE(isBeamAt(1300, 1300));
  // Down to the left from (1000, 50000): slope -1, offset 51000. The left edge is met at (0, 51000); the lower one at
  // x -49000, outside the world but only tested against 100000: it is the later candidate and wins.
  local->position = {1000, 50000};
  flyAndPaint(-200, 200);
  EXPECT_TRUE(isBeamAt(-900, 900));
  EXPECT_TRUE(isBeamAt(-3000, 3000)) << "on beyond the left edge";
  // Up to the right from (50000, 2000): slope -2, offset 102000. The upper edge is met at (51000, 0); the right one at
  // y -98000, outside the world but only tested against 100000: it wins as well.
  local->position = {50000, 2000};
  flyAndPaint(100, -200);
  EXPECT_TRUE(isBeamAt(950, -1900));
  EXPECT_TRUE(isBeamAt(1500, -3000)) << "on beyond the upper edge";
}

// From slightly above the lower edge, falling by 1/128 over 1100: it meets the right edge at y 99999.9993, which single
// precision rounds to the corner's 100000. It meets the lower edge at x 100100, beyond its bound.
TEST_F(Laser, HitExactlyOnTheCornerCounts) {
  local->position = {99000, 100000 - 1.0F / 128};
  flyAndPaint(1100, 1.0F / 128);
  EXPECT_TRUE(isBeamAt(900, 0));
  EXPECT_FALSE(isBeamAt(-900, 0));
}

// Down to the right with slope 2 from (50000, 98000): offset -2000. It meets the lower edge at (51000, 100000), and the
// right edge at y 198000, above its bound. As the later candidate the right one would win.
TEST_F(Laser, BeamEndsAtTheLowerEdgeIfItMeetsTheRightOneBelowTheWorld) {
  local->position = {50000, 98000};
  flyAndPaint(100, 200);
  EXPECT_TRUE(isBeamAt(950, 1900));
  EXPECT_FALSE(isBeamAt(1200, 2400));
}

TEST_F(Laser, Q131ABeamWithoutAnyHitEndsAtTheOrigin) {
  // A step to the left and up at the world's corner leaves no candidate in front of a player outside the world. At
  // (-50, 20), coming from (-40, 30), slope 1, offset 70: (-70, 0) has x below 0, and (0, 70), (99930, 100000) and
  // (100000, 100070) are behind.
  local->position = {-1050, 20};
  flyAndPaint(-10, -10);
  // The origin is 1050 to the right and 20 up.
  EXPECT_TRUE(isBeamAt(900, -17));
  EXPECT_FALSE(isBeamAt(-900, -900));
}

TEST_F(Laser, AFarHitDoesNotBendTheBeam) {
  // 1/16 down per 300 to the left: it meets the lower edge, 50000 below, 240 million units away. At the canvas's left
  // border the beam has fallen 1.2 units, a twelfth of a pixel: the core's two rows are those of a level beam.
  machine.scriptedDraws = {0};
  flyAndPaint(-300, 0.0625F);
  const Colour core = RGB(0, 255, 0);
  EXPECT_NE(pixelAt(canvas(), 1, 302), core);
  EXPECT_EQ(pixelAt(canvas(), 1, 303), core);
  EXPECT_EQ(pixelAt(canvas(), 1, 304), core);
  EXPECT_NE(pixelAt(canvas(), 1, 305), core);
}

TEST_F(Laser, Q302AHitBeyondSinglePrecisionIsAFault) {
  // One unit to the right and `hair` down: it meets the lower edge 100000 / hair away, and 3.4028E+38 is the largest
  // single. The same for the other bounds.
  const auto paint = [this](Vector from, Vector to) {
    local->lastPosition = from;
    local->position = to;
    local->paintSelf();
  };
  paint({49999, 0}, {50000, 2.94E-34F});
  EXPECT_THROW(paint({49999, 0}, {50000, 2.938E-34F}), RuntimeFault);
  paint({0, 49999}, {2.94E-34F, 50000});
  EXPECT_THROW(paint({0, 49999}, {2.938E-34F, 50000}), RuntimeFault);
  // Outside the world, which no player reaches, the upper edge and the offset: slope 6E+38, offset 3E+38 - 9E+38.
  EXPECT_THROW(paint({1, 0}, {1.5F, 3E38F}), RuntimeFault);
  const float below = std::nextafter(3E38F, 0.0F);
  EXPECT_THROW(paint({-3E38F, below}, {3E38F, 3E38F}), RuntimeFault);
}

TEST_F(Laser, OpponentsHaveBeamsToo) {
  local->isConnected = false;
  clsPlayer& other = placeOpponent(greenPlayer, 50000, 50000);
  other.powerups[laserSlot].active = true;
  other.lastPosition = {49800, 49800};
  canvas().Cls();
  other.paintSelf();
  EXPECT_TRUE(isBeamAt(3000, 3000));
}

TEST_F(Laser, GhostsHaveBeamsToo) {
  local->alive = false;
  flyAndPaint(200, 200);
  EXPECT_TRUE(isBeamAt(3000, 3000));
}

TEST_F(Laser, WithoutThePowerupThereIsNoBeam) {
  local->powerups[laserSlot].active = false;
  flyAndPaint(300, 0);
  EXPECT_EQ(countPixels(canvas(), RGB(0, 255, 0)), 0);
}

}  // namespace
}  // namespace kelvora
