#include "server/bots/foresight.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora::server {
namespace {

/// Three sides of a square with sides of 4000 and points 1000 apart, from its lower left corner: up, right, down.
std::vector<Point> hook() {
  std::vector<Point> tail;
  for (int i = 0; i < 4; ++i) tail.push_back({10'000, 14'000 - 1'000.0 * i});
  for (int i = 0; i < 4; ++i) tail.push_back({10'000 + 1'000.0 * i, 10'000});
  for (int i = 0; i <= 3; ++i) tail.push_back({14'000, 10'000 + 1'000.0 * i});
  return tail;
}
constexpr Point head = {14'000, 13'500};
constexpr Point middle = {12'000, 12'000};

TEST(Foresight, StraightFlightContinues) {
  const Seen player{.position = {10'000, 20'000}, .velocity = {20, -10}};
  EXPECT_EQ(foreseen(player, 100, true), (Point{12'000, 19'000}));
}

TEST(Foresight, ACircleEndsWhereItBegan) {
  // 2 pi in 1000 ms.
  const Seen player{.position = {50'000, 50'000}, .velocity = {20, 0}, .turn = 2 * pi / 1000};
  const Point back = foreseen(player, 1'000, true);
  EXPECT_NEAR(back.x, 50'000, 1e-6);
  EXPECT_NEAR(back.y, 50'000, 1e-6);
  // Half of it ends on the opposite side: the circle is 20000 long, so 20000 / pi wide.
  const Point across = foreseen(player, 500, true);
  EXPECT_NEAR(across.x, 50'000, 1e-6);
  EXPECT_NEAR(across.y, 50'000 + 20'000 / pi, 1e-6);
  EXPECT_EQ(foreseen(player, 500, false), (Point{60'000, 50'000})) << "without foreseeing turns";
}

TEST(Foresight, NobodyLeavesTheWorld) {
  const Seen player{.position = {99'000, 500}, .velocity = {20, -20}};
  EXPECT_EQ(foreseen(player, 100, true), (Point{99'000, 1'500}));
}

TEST(Foresight, LoopIsClosedAtTheNearestPointThatEnclosesThePrey) {
  const auto closing = soonestClosing(hook(), head, 10, middle, 0, 1'000, false);
  ASSERT_TRUE(closing);
  // To the left side of the square. Its points at x 10000 from y 14000 to 11000 are 4000 across and 500, 500, 1500 and
  // 2500 to the side. Of equally near ones the newer one is found first.
  EXPECT_EQ(closing->vertex, 1U);
  EXPECT_EQ(closing->ms, 450);
  EXPECT_EQ(closing->gate, (Point{10'000, 13'500}));
  EXPECT_TRUE(isInside(hook(), head, *closing, middle));
  EXPECT_FALSE(isInside(hook(), head, *closing, {9'000, 12'000}));
  EXPECT_FALSE(isInside(hook(), head, *closing, {12'000, 13'800})) << "below the crossing";
}

TEST(Foresight, PlayersOutsideAreInNoLoop) {
  EXPECT_FALSE(soonestClosing(hook(), head, 10, {12'000, 15'000}, 0, 1'000, false));
  EXPECT_FALSE(soonestClosing(hook(), head, 10, {15'000, 12'000}, 0, 1'000, false));
}

TEST(Foresight, ALoopThatTakesTooLongDoesNotCount) {
  EXPECT_FALSE(soonestClosing(hook(), head, 10, middle, 0, 400, false));
  EXPECT_FALSE(soonestClosing(hook(), head, 0, middle, 0, 400, false));
}

TEST(Foresight, PointThatExpiresBeforeItIsReachedClosesNothing) {
  // At 2.4 units per ms the crossing takes 1875 ms. The points on the left are at least 280 ms old by then.
  EXPECT_FALSE(soonestClosing(hook(), head, 2.4, middle, 0, 5'000, false));
  EXPECT_TRUE(soonestClosing(hook(), head, 2.4, middle, 0, 5'000, true)) << "an extended tail does not end";
}

TEST(Foresight, SegmentsMeetOrDoNot) {
  EXPECT_TRUE(segmentsCross({0, 0}, {10, 10}, {0, 10}, {10, 0}));
  EXPECT_FALSE(segmentsCross({0, 0}, {4, 4}, {0, 10}, {10, 0}));
  EXPECT_FALSE(segmentsCross({0, 0}, {10, 0}, {0, 1}, {10, 1}));
}

}  // namespace
}  // namespace kelvora::server
