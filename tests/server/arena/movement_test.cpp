#include "server/arena/movement.h"

#include "tests/server/arena/pieces.h"

namespace kelvora::server {
namespace {

/// At 3 times the design speed of 30 units per ms, a player flies 90 units per ms, so 7200 in the 80 ms of one step.
struct MoveTest : testing::Test {
  Player player = playerAt(1, 20'000, 20'000);

  MoveTest() { player.lastReport = testTime; }
  Move move(int x, int y, Millis at) { return moveTo(player, spotAt(x, y), 3, at); }
};

TEST_F(MoveTest, AStepSetsSpotAndHeading) {
  EXPECT_EQ(move(20'300, 19'600, testTime + 40), Move::step);
  EXPECT_EQ(player.spot.point(), (Point{20'300, 19'600}));
  EXPECT_EQ(player.heading, (Point{300, -400}));
  EXPECT_EQ(player.lastReport, testTime + 40);
  EXPECT_EQ(move(20'300, 19'600, testTime + 80), Move::step);
  EXPECT_EQ(player.heading, (Point{300, -400})) << "standing still keeps the heading";
}

TEST_F(MoveTest, StepsReachAsFarAs80MsOfFlight) {
  EXPECT_EQ(move(23'601, 16'400, testTime + 80), Move::refused) << "7201 units, both axes combined";
  EXPECT_EQ(player.spot.point(), (Point{20'000, 20'000}));
  EXPECT_EQ(player.lastReport, testTime);
  EXPECT_EQ(move(23'600, 16'400, testTime + 80), Move::step);
}

TEST_F(MoveTest, AfterASecondAnySpotIsANewStart) {
  fly(player, {spotAt(19'000, 20'000), spotAt(20'000, 20'000)}, testTime);
  player.heading = {1, 0};
  EXPECT_EQ(move(90'000, 20'000, testTime + 999), Move::refused);
  EXPECT_FALSE(player.tail.vertices().empty());
  EXPECT_EQ(move(90'000, 20'000, testTime + 1'000), Move::jump);
  EXPECT_EQ(player.spot.point(), (Point{90'000, 20'000}));
  EXPECT_TRUE(player.tail.vertices().empty());
  EXPECT_FALSE(player.heading.has_value());
}

TEST_F(MoveTest, GhostsFlyTwiceAsFar) {
  player.isAlive = false;
  EXPECT_EQ(move(34'401, 20'000, testTime + 80), Move::refused);
  EXPECT_EQ(move(34'400, 20'000, testTime + 80), Move::step);
}

TEST_F(MoveTest, ATurboTriplesTheSpeedAndStretchesTheStep) {
  run(player, turboSlot, testTime);
  EXPECT_EQ(move(52'401, 20'000, testTime + 40), Move::refused) << "270 units per ms for 80 + 40 ms are 32400";
  EXPECT_EQ(move(52'400, 20'000, testTime + 40), Move::step);
}

TEST_F(MoveTest, WithoutALimitAnySpeedIsAStep) {
  EXPECT_EQ(moveTo(player, spotAt(100'000, 100'000), 0, testTime), Move::step);
}

}  // namespace
}  // namespace kelvora::server
