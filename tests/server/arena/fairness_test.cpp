// Limits on how far a player may move.

#include "server/arena/speedLimit.h"
#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

/// Three times the design speed of 30 units per ms: 90000 units per second.
class FairnessTest : public ArenaTest {
 protected:
  explicit FairnessTest(double factor = 3) : ArenaTest(limited(factor)) {}
  static ArenaRules limited(double factor) {
    ArenaRules rules = quietRulesWithIncome(60);
    rules.speedFactor = factor;
    return rules;
  }

  /// Logs in Ann and moves her to a corner, long ago.
  void begin() {
    login(ann, "Ann");
    login(bob, "Bob", "1");
    now += 5'000;
    report(ann, 0, 0);
    now += 5'000;
    got.clear();
  }
  /// True if the report is relayed.
  bool moves(int x, int y) {
    got.clear();
    report(ann, x, y);
    return !got.empty();
  }
};

TEST_F(FairnessTest, StepsCoverAtMostTwoReportIntervals) {
  begin();
  report(ann, 0, 0);
  EXPECT_FALSE(moves(3'600, 3'601)) << "90 units per ms, both axes combined, for 80 ms";
  EXPECT_TRUE(moves(3'600, 3'600));
  now += 5'000;
  EXPECT_TRUE(moves(3'600, 3'600));
  now += 999;
  EXPECT_FALSE(moves(10'801, 3'600)) << "nor after a pause, which makes no frame longer";
  EXPECT_TRUE(moves(10'800, 3'600));
}

TEST_F(FairnessTest, BounceAtFullSpeedDoesNotCountAsAJump) {
  begin();
  ASSERT_TRUE(moves(200, 200));
  // Slow frames move 300 units on each axis. The first bounces the ball off both walls, and three more follow.
  EXPECT_TRUE(moves(1'900, 1'900));
}

TEST_F(FairnessTest, ASecondsWorthOfDistanceIsAllowedAtOnce) {
  begin();
  // 90000 units: twelve and a half maximum steps.
  for (int i = 1; i <= 12; ++i) EXPECT_TRUE(moves(7'200 * i, 0)) << i;
  EXPECT_FALSE(moves(86'400, 3'601));
  EXPECT_TRUE(moves(86'400, 3'600));
  EXPECT_FALSE(moves(86'400, 3'601));
}

TEST_F(FairnessTest, AfterThatTheSpeedCounts) {
  begin();
  for (int i = 1; i <= 12; ++i) ASSERT_TRUE(moves(7'200 * i, 0));
  ASSERT_TRUE(moves(86'400, 3'600));
  now += 10;
  EXPECT_FALSE(moves(86'400, 4'501)) << "900 units in a hundredth of a second";
  EXPECT_TRUE(moves(86'400, 4'500));
  EXPECT_EQ(view(ann).position, (Point{86'400, 4'500}));
}

TEST_F(FairnessTest, FullSpeedIsNeverRefused) {
  begin();
  for (int i = 1; i <= 80; ++i) {
    now += 40;
    EXPECT_TRUE(moves(1'200 * i, 0)) << "four frames of 300 units";
  }
}

TEST_F(FairnessTest, TurboRaisesTheLimit) {
  login(ann, "Ann");
  login(bob, "Bob", "1");
  pass(20'000);
  report(ann, 0, 0);
  pass(2'000);
  say(ann, wire::msgBuyRequest, {"1"});
  say(ann, wire::msgActivateRequest, {"1"});
  report(ann, 0, 0);
  EXPECT_FALSE(moves(21'601, 0)) << "270 units per ms for 80 ms";
  EXPECT_TRUE(moves(21'600, 0));
  now += 200;
  EXPECT_FALSE(moves(97'201, 0)) << "on a slow machine a turbo's frames are longer, here by 200 ms";
  EXPECT_TRUE(moves(97'200, 0));
}

TEST_F(FairnessTest, DeathRaisesTheLimitToo) {
  begin();
  for (const auto& [x, y] : {std::pair{200, 0}, {2'000, 0}, {2'000, 2'000}, {1'000, 2'000}}) report(bob, x, y);
  report(ann, 1'500, 1'000);
  report(bob, 1'000, 0);
  ASSERT_FALSE(view(ann).isAlive);
  now += 1'000;
  report(ann, 1'500, 1'000);
  EXPECT_FALSE(moves(15'901, 1'000)) << "180 units per ms for 80 ms";
  EXPECT_TRUE(moves(15'900, 1'000));
}

TEST_F(FairnessTest, AfterASecondOfRefusalsAPlayerStartsOver) {
  begin();
  report(ann, 0, 0);
  report(ann, 10, 0);
  ASSERT_EQ(view(ann).tail.size(), 2U);
  for (int i = 1; i <= 9; ++i) {
    now += 100;
    EXPECT_FALSE(moves(10'000 * i, 50'000)) << i;
  }
  now += 99;
  EXPECT_FALSE(moves(100'000, 100'000)) << "999 ms after the last accepted one";
  now += 1;
  EXPECT_TRUE(moves(100'000, 100'000));
  EXPECT_EQ(view(ann).position, (Point{100'000, 100'000}));
  EXPECT_EQ(view(ann).tail, (std::vector<Point>{{100'000, 100'000}})) << "and no segment leads there";
}

TEST_F(FairnessTest, PauseAloneKeepsTheTail) {
  begin();
  report(ann, 1'000, 0);
  now += 1'500;
  report(ann, 2'000, 0);
  EXPECT_EQ(view(ann).tail.size(), 2U);
}

TEST_F(FairnessTest, JumpCapturesNobody) {
  begin();
  report(bob, 5'000, 5'000);
  // Three sides of a square around Bob, and a jump that would close it.
  for (const auto& [x, y] : {std::pair{1'000, 1'000}, {7'000, 1'000}, {7'000, 7'000}, {1'000, 7'000}})
    report(ann, x, y);
  ASSERT_EQ(view(ann).tail.size(), 4U);
  EXPECT_FALSE(moves(3'000, 0)) << "2000 and 7000 units";
  EXPECT_TRUE(view(bob).isAlive);
  EXPECT_TRUE(moves(2'000, 1'000)) << "no leap";
  EXPECT_FALSE(view(bob).isAlive);
}

TEST_F(FairnessTest, TheFirstStepIsLimitedToo) {
  login(ann, "Ann");
  const Point start = view(ann).position;  // at least 10000 units from every edge
  EXPECT_FALSE(moves(static_cast<int>(start.x) + 7'201, static_cast<int>(start.y)));
  EXPECT_TRUE(moves(static_cast<int>(start.x) + 7'200, static_cast<int>(start.y)));
}

class NoLimitTest : public FairnessTest {
 protected:
  NoLimitTest() : FairnessTest(0) {}
};

TEST_F(NoLimitTest, WithoutAFactorAnySpeedIsFine) {
  begin();
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(moves(i % 2 == 0 ? 100'000 : 0, i % 2 == 0 ? 100'000 : 0));
  EXPECT_EQ(view(ann).tail.size(), 20U);
}

TEST(SpeedLimit, AccumulatesAtMostASecondsWorth) {
  SpeedLimit limit;
  EXPECT_TRUE(limit.allows(1'000, 1, 0));
  EXPECT_FALSE(limit.allows(1, 1, 0));
  EXPECT_FALSE(limit.allows(501, 1, 500));
  EXPECT_TRUE(limit.allows(500, 1, 500)) << "the refusal has used up nothing";
  EXPECT_FALSE(limit.allows(1'001, 1, 100'000));
  EXPECT_TRUE(limit.allows(1'000, 1, 100'000));
}

TEST(SpeedLimit, SlowerSpeedReducesTheSavedDistance) {
  SpeedLimit limit;
  EXPECT_TRUE(limit.allows(0, 3, 0));
  EXPECT_FALSE(limit.allows(1'001, 1, 0));
  EXPECT_TRUE(limit.allows(1'000, 1, 0));
}

}  // namespace
}  // namespace kelvora::server
