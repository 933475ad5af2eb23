#include "server/bots/flight.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

constexpr double right = 0;
constexpr double down = pi / 2;
constexpr double up = -pi / 2;
constexpr double left = pi;

Flight free(float x, float y) {
  Flight flight({x, y});
  flight.setBrakes(false);
  return flight;
}

TEST(BotFlight, StandsUntilTheBrakesAreReleased) {
  Flight flight({500, 600});
  for (int i = 0; i < 20; ++i) EXPECT_FALSE(flight.step(right, 1, true, false));
  EXPECT_EQ(flight.position(), (Vector{500, 600}));
}

TEST(BotFlight, ReportsEveryFourthFrame) {
  Flight flight = free(50'000, 50'000);
  std::string reports;
  for (int i = 0; i < 12; ++i) reports += flight.step(down, 1, true, false) ? 'R' : '-';
  EXPECT_EQ(reports, "---R---R---R");
}

TEST(BotFlight, SpeedIsTheSumOfBothAxes) {
  for (int i = 0; i < 64; ++i) {
    const double angle = 0.05 + i * 0.098;
    Flight flight = free(50'000, 50'000);
    flight.step(angle, 0.5, true, false);
    EXPECT_NEAR(flightLength(flight.point() - Point{50'000, 50'000}), 150, 0.02) << angle;
  }
}

TEST(BotFlight, FliesInTheNearestDirectionThatAMouseCanSelect) {
  // The 89 bearings of a quadrant divide the share of the speed into steps of at most .0174 (near 44 degrees: half the
  // growth of the tangent over 2 degrees). So the nearest one is within .0088, except for the last, straight to the
  // side.
  for (int i = 0; i < 64; ++i) {
    const double angle = 0.05 + i * 0.098;
    const Point way = towards(angle);
    const double share = std::fabs(way.x) / flightLength(way);
    if (share > 0.96) continue;
    Flight flight = free(50'000, 50'000);
    flight.step(angle, 1, true, false);
    const Point step = flight.point() - Point{50'000, 50'000};
    EXPECT_NEAR(std::fabs(step.x) / flightLength(step), share, 0.009) << angle;
    EXPECT_GT(dot(step, way), 0) << angle;
  }
}

TEST(BotFlight, SidewaysFlightIsSlightlySlanted) {
  // Bearing 88 gives (tan 43 + 1) / 2 of the speed: 300 x 0.966258 = 289.877.
  Flight flight = free(50'000, 50'000);
  flight.step(right, 1, true, false);
  EXPECT_NEAR(flight.point().x, 50'289.877, 0.01);
  EXPECT_NEAR(std::fabs(flight.point().y - 50'000), 10.123, 0.01);
}

TEST(BotFlight, TurboIsThreeTimesAsFastAndIgnoresTheAxisLimit) {
  Flight flight = free(50'000, 50'000);
  flight.step(down, 1, true, true);
  EXPECT_EQ(flight.position().y, 50'900);
}

TEST(BotFlight, GhostIsTwiceAsFastUpToTheAxisLimit) {
  Flight straight = free(50'000, 50'000);
  straight.step(down, 1, false, false);
  EXPECT_EQ(straight.position().y, 50'300);
  Flight slanting = free(50'000, 50'000);
  slanting.step(pi / 4, 1, false, false);
  EXPECT_NEAR(flightLength(slanting.point() - Point{50'000, 50'000}), 600, 0.02);
}

TEST(BotFlight, BouncesAThousandUnitsInward) {
  Flight bottom = free(50'000, 99'900);
  bottom.step(down, 1, true, false);
  EXPECT_EQ(bottom.position().y, 99'000);
  Flight top = free(50'000, 100);
  top.step(up, 1, true, false);
  EXPECT_EQ(top.position().y, 1'000);
  Flight side = free(100, 50'000);
  side.step(left, 1, true, false);
  EXPECT_EQ(side.position().x, 1'000);
  Flight otherSide = free(99'900, 50'000);
  otherSide.step(right, 1, true, false);
  EXPECT_EQ(otherSide.position().x, 99'000);
}

TEST(BotFlight, TheEdgeItselfIsInsideTheWorld) {
  Flight flight = free(50'000, 99'700);
  flight.step(down, 1, true, false);
  EXPECT_EQ(flight.position().y, 100'000);
}

TEST(BotFlight, BrakesByThreePerFrame) {
  Flight flight = free(50'000, 50'000);
  flight.step(down, 1, true, false);
  flight.setBrakes(true);
  flight.step(down, 1, true, false);
  EXPECT_EQ(flight.position().y, 50'300 + 297);
  // 297 + 294 + ... + 3 + 0 is 3 x (99 x 100 / 2): 14850 in a hundred frames.
  for (int i = 0; i < 99; ++i) flight.step(down, 1, true, false);
  EXPECT_EQ(flight.position().y, 50'300 + 14'850);
  for (int i = 0; i < 8; ++i) EXPECT_FALSE(flight.step(down, 1, true, false)) << "at rest it is silent";
}

}  // namespace
}  // namespace kelvora::server
