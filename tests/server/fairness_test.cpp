// How far a player may go.

#include "server/speedLimit.h"
#include "tests/server/arenaTest.h"

namespace kelvora::server {
namespace {

/// Three times the design speed of 30 units a ms: 90000 units in a second.
class FairnessTest : public ArenaTest {
 protected:
  explicit FairnessTest(double factor = 3) : ArenaTest(limited(factor)) {}
  static ArenaRules limited(double factor) {
    ArenaRules rules = quietRulesWithIncome(60);
    rules.speedFactor = factor;
    return rules;
  }

  /// Ann is in, a good while after she has been put to a corner.
  void begin() {
    login(ann, "Ann");
    login(bob, "Bob", "1");
    now += 5'000;
    report(ann, 0, 0);
    now += 5'000;
    got.clear();
  }
  /// Whether the report is relayed.
  bool moves(int x, int y) {
    got.clear();
    report(ann, x, y);
    return !got.empty();
  }
};

TEST_F(FairnessTest, ASecondsWorthMayBeGoneAtOnce) {
  begin();
  report(ann, 1, 0);
  now += 999;
  EXPECT_FALSE(moves(45'001, 45'001)) << "90001 units on both axes together";
  EXPECT_TRUE(moves(45'001, 45'000));
  EXPECT_FALSE(moves(45'002, 45'000));
}

TEST_F(FairnessTest, ThenItIsTheSpeedThatCounts) {
  begin();
  ASSERT_TRUE(moves(45'000, 45'000));
  now += 100;
  EXPECT_FALSE(moves(54'001, 45'000)) << "9000 units in a tenth of a second";
  EXPECT_TRUE(moves(54'000, 45'000));
  EXPECT_EQ(view(ann).position, (Place{54'000, 45'000}));
}

TEST_F(FairnessTest, FullSpeedIsNeverRefused) {
  begin();
  for (int i = 1; i <= 80; ++i) {
    now += 40;
    EXPECT_TRUE(moves(1'200 * i, 0)) << "four frames of 300 units";
  }
}

TEST_F(FairnessTest, TurboAndDeathMakeFaster) {
  login(ann, "Ann");
  login(bob, "Bob", "1");
  pass(20'000);
  report(ann, 0, 0);
  pass(2'000);
  say(ann, wire::msgBuyRequest, {"1"});
  say(ann, wire::msgActivateRequest, {"1"});
  pass(1'000);
  EXPECT_TRUE(moves(100'000, 100'000)) << "of 270000";
  EXPECT_FALSE(moves(100'000, 0)) << "which leaves 70000";
  EXPECT_TRUE(moves(100'000, 30'000));
  pass(10'000);
  report(ann, 50'000, 50'000);
  pass(1'000);
  circle(bob, 50'000, 50'000);
  ASSERT_FALSE(view(ann).isAlive);
  pass(1'000);
  EXPECT_TRUE(moves(100'000, 100'000));
  EXPECT_FALSE(moves(100'000, 19'999)) << "80001 of 80000 that are left";
  EXPECT_TRUE(moves(100'000, 20'000));
}

TEST_F(FairnessTest, AfterASecondOfRefusalsAPlayerBeginsAnew) {
  begin();
  ASSERT_TRUE(moves(45'000, 45'000));
  now += 10;
  report(ann, 45'010, 45'000);
  ASSERT_EQ(view(ann).tail.size(), 2U);
  for (int i = 0; i < 9; ++i) {
    now += 100;
    // Further away than what has come together until then: 900 units after the last one, and 9000 each time.
    EXPECT_FALSE(moves(45'010 + 10'000 + 5'000 * i, 50'000 + 5'000 * i)) << i;
  }
  now += 99;
  EXPECT_FALSE(moves(100'000, 100'000)) << "999 ms after the last accepted one";
  now += 1;
  EXPECT_TRUE(moves(100'000, 100'000));
  EXPECT_EQ(view(ann).position, (Place{100'000, 100'000}));
  EXPECT_EQ(view(ann).tail, (std::vector<Place>{{100'000, 100'000}})) << "and no segment leads there";
}

TEST_F(FairnessTest, APauseAloneLosesNoTail) {
  begin();
  report(ann, 1'000, 0);
  now += 1'500;
  report(ann, 2'000, 0);
  EXPECT_EQ(view(ann).tail.size(), 2U);
}

TEST_F(FairnessTest, ALeapCapturesNobody) {
  begin();
  report(bob, 50'000, 50'000);
  // Three sides of a square, and a leap that would close it.
  report(ann, 20'000, 20'000);
  now += 1'100;
  report(ann, 20'000, 60'000);
  now += 300;
  report(ann, 60'000, 60'000);
  now += 300;
  report(ann, 60'000, 20'000);
  ASSERT_EQ(view(ann).tail.size(), 4U);
  got.clear();
  now += 100;
  report(ann, 10'000, 20'000);
  EXPECT_TRUE(got.empty());
  EXPECT_TRUE(view(bob).isAlive);
}

TEST_F(FairnessTest, TheFirstStepIsLimitedToo) {
  login(ann, "Ann");
  const Place start = view(ann).position;
  const int x = start.x > 50'000 ? 0 : 100'000;
  const int y = start.y > 50'000 ? 0 : 100'000;
  const bool isFar = std::abs(start.x - x) + std::abs(start.y - y) > 90'000;
  EXPECT_EQ(moves(x, y), !isFar);
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

TEST(SpeedLimit, FillsUpToASecondsWorthAndNoFurther) {
  SpeedLimit limit;
  EXPECT_TRUE(limit.allows(1'000, 1, 0));
  EXPECT_FALSE(limit.allows(1, 1, 0));
  EXPECT_FALSE(limit.allows(501, 1, 500));
  EXPECT_TRUE(limit.allows(500, 1, 500)) << "the refusal has used nothing up";
  EXPECT_FALSE(limit.allows(1'001, 1, 100'000));
  EXPECT_TRUE(limit.allows(1'000, 1, 100'000));
}

TEST(SpeedLimit, ASlowerSpeedTakesBackWhatAFasterOneHasSaved) {
  SpeedLimit limit;
  EXPECT_TRUE(limit.allows(0, 3, 0));
  EXPECT_FALSE(limit.allows(1'001, 1, 0));
  EXPECT_TRUE(limit.allows(1'000, 1, 0));
}

}  // namespace
}  // namespace kelvora::server
