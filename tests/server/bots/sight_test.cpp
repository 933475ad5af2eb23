#include "server/bots/sight.h"

#include <gtest/gtest.h>

#include "server/arena/plane.h"
#include "server/bots/chatter.h"

namespace kelvora::server {
namespace {

PlayerView player(std::int16_t node, Point position) {
  PlayerView view;
  view.client = static_cast<ClientId>(node);
  view.node = node;
  view.isAlive = true;
  view.position = position;
  return view;
}

/// Node 1 stands still, node 2 flies 800 to the right per snapshot.
class BotSight : public testing::Test {
 protected:
  void watch(int pictures) {
    for (int i = 0; i < pictures; ++i) {
      now += 40;
      x += 800;
      sight.add({player(1, {50'000, 50'000}), player(2, {x, 20'000})}, now);
    }
  }

  Sight sight;
  Millis now = 1'000;
  double x = 10'000;
};

TEST_F(BotSight, OthersAreSeenAfterTheReactionTime) {
  watch(20);
  const BotView view = sight.viewOf(*sight.player(1), 120, now);
  ASSERT_EQ(view.others.size(), 1U);
  EXPECT_EQ(view.others[0].position, (Point{x - 3 * 800, 20'000}));
  EXPECT_EQ(view.delay, 120);
  EXPECT_EQ(view.position, (Point{50'000, 50'000}));
}

TEST_F(BotSight, NewcomersAreSeenWithShortHistory) {
  watch(2);
  const BotView view = sight.viewOf(*sight.player(1), 600, now);
  EXPECT_EQ(view.delay, 40);
  EXPECT_EQ(view.others[0].velocity, Point{});
}

TEST_F(BotSight, VelocityIsMeasuredFromPositions) {
  watch(20);
  const Seen other = sight.viewOf(*sight.player(1), 0, now).others[0];
  EXPECT_NEAR(other.velocity.x, 20, 1e-9) << "800 in 40 ms";
  EXPECT_NEAR(other.velocity.y, 0, 1e-9);
  EXPECT_NEAR(other.turn, 0, 1e-12);
}

TEST_F(BotSight, ACircleHasATurn) {
  // A twentieth of a circle per snapshot of 40 ms.
  for (int i = 0; i < 20; ++i) {
    now += 40;
    sight.add({player(1, {50'000, 50'000}), player(2, Point{30'000, 30'000} + towards(i * pi / 10) * 2'000)}, now);
  }
  const Seen other = sight.viewOf(*sight.player(1), 0, now).others[0];
  EXPECT_NEAR(other.turn, pi / 10 / 40, 1e-6);
}

TEST_F(BotSight, DepartedPlayersAreNotSeen) {
  watch(20);
  now += 40;
  sight.add({player(1, {50'000, 50'000})}, now);
  EXPECT_TRUE(sight.viewOf(*sight.player(1), 400, now).others.empty());
}

TEST_F(BotSight, TailStaysDangerousAsLongAsItsChargedPointsMayLast) {
  PlayerView charged = player(2, {x, 20'000});
  charged.isRunning[chargedTailSlot] = true;
  now += 40;
  sight.add({player(1, {50'000, 50'000}), charged}, now);
  watch(54);  // 2160 ms
  EXPECT_TRUE(sight.viewOf(*sight.player(1), 0, now).others[0].isTailCharged);
  watch(2);
  EXPECT_FALSE(sight.viewOf(*sight.player(1), 0, now).others[0].isTailCharged);
}

TEST(BotChatter, IsSilentForAMinuteAfterALine) {
  Chatter chatter(1);
  std::vector<Millis> spoken;
  for (Millis now = 0; now < 3'600'000; now += 1'000) {
    chatter.notice(Occasion::captured, now);
    if (chatter.line(now)) spoken.push_back(now);
  }
  ASSERT_GT(spoken.size(), 20U) << "something happens every second";
  for (std::size_t i = 1; i < spoken.size(); ++i) EXPECT_GE(spoken[i] - spoken[i - 1], 60'000);
}

TEST(BotChatter, TypesForAMomentFirst) {
  for (std::uint32_t seed = 1; seed < 50; ++seed) {
    Chatter chatter(seed);
    chatter.notice(Occasion::arrival, 10'000);
    EXPECT_FALSE(chatter.line(11'160));
  }
}

}  // namespace
}  // namespace kelvora::server
