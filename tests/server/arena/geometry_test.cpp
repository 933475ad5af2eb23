#include "server/arena/geometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/server/arena/slowLoops.h"

namespace kelvora::server {
namespace {

using Points = std::vector<GridPoint>;

/// The same figure, scaled.
Points scaled(Points points, std::int64_t factor) {
  for (GridPoint& point : points) point = {point.x * factor, point.y * factor};
  return points;
}

/// The first vertex of the loop around the point; -1 for none.
int loopAround(const Points& tail, GridPoint place) {
  const Points places{place};
  const auto loop = enclosingLoops(tail, places).at(0);
  if (std::ranges::all_of(tail, [](GridPoint point) { return point.x < 2'000 && point.y < 2'000; })) {
    EXPECT_EQ(loop, slowEnclosingLoops(tail, places).at(0));
  }
  return loop ? static_cast<int>(*loop) : -1;
}

TEST(Geometry, TheGridHas1024PointsToAUnit) {
  EXPECT_EQ(toGrid(1, 0.5), (GridPoint{1024, 512}));
  EXPECT_EQ(toGrid(99'999.9921875, 100'000), (GridPoint{102'399'992, 102'400'000}));
  EXPECT_EQ(toGrid(0.0004, 0.0005), (GridPoint{0, 1})) << "0.41 and 0.512 points";
}

// The last segment goes down from (0, 10) to (0, -2) and crosses the first one at (0, 0): the loop is (0, 0), (10, 0),
// (10, 10), (0, 10).
const Points square{{-2, 0}, {10, 0}, {10, 10}, {0, 10}, {0, -2}};

TEST(Geometry, ACrossingClosesALoop) {
  EXPECT_EQ(loopAround(square, {5, 5}), 1);
  EXPECT_EQ(loopAround(square, {1, 9}), 1);
  EXPECT_EQ(loopAround(square, {11, 5}), -1);
  EXPECT_EQ(loopAround(square, {-1, 5}), -1);
  EXPECT_EQ(loopAround(square, {5, -1}), -1);
}

TEST(Geometry, TheLoopItselfIsNotInside) {
  for (const GridPoint place : {GridPoint{5, 0}, {10, 5}, {5, 10}, {0, 5}, {0, 0}, {10, 0}, {10, 10}, {0, 10}}) {
    EXPECT_EQ(loopAround(square, place), -1) << place.x << ' ' << place.y;
  }
  EXPECT_EQ(loopAround(square, {-1, 0}), -1) << "on the tail, but before the crossing";
}

TEST(Geometry, LoopMayTurnEitherWay) {
  const Points other{{0, -2}, {0, 10}, {10, 10}, {10, 0}, {-2, 0}};
  EXPECT_EQ(loopAround(other, {5, 5}), 1);
  EXPECT_EQ(loopAround(other, {-1, -1}), -1);
}

TEST(Geometry, TouchingIsEnough) {
  const Points endsOnTheSegment{{-2, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
  EXPECT_EQ(loopAround(endsOnTheSegment, {5, 5}), 1);
  const Points stopsShort{{-2, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 1}};
  EXPECT_EQ(loopAround(stopsShort, {5, 5}), -1);
  const Points endsOnTheFirstVertex{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
  EXPECT_EQ(loopAround(endsOnTheFirstVertex, {5, 5}), 1);
  const Points goesThroughTheFirstVertex{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, -5}};
  EXPECT_EQ(loopAround(goesThroughTheFirstVertex, {5, 5}), 1);
}

TEST(Geometry, ASharedVertexOfTwoOlderSegmentsClosesBothTheirLoops) {
  // Through (0, 0), where the first segment ends and the second begins: the longer loop has the same area.
  const Points tail{{-5, -5}, {0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, -10}};
  EXPECT_EQ(loopAround(tail, {5, 5}), 1);
  EXPECT_EQ(loopAround(tail, {-1, 0}), -1);
}

TEST(Geometry, ConsecutiveSegmentsCloseNothing) {
  EXPECT_EQ(loopAround({{0, 0}, {10, 0}, {10, 10}}, {9, 1}), -1);
  EXPECT_EQ(loopAround({{0, 0}, {10, 0}, {0, 0}}, {5, 0}), -1) << "there and back";
  EXPECT_EQ(loopAround({{0, 10}, {0, 0}, {10, 0}, {3, 0}}, {5, 0}), -1);
  EXPECT_EQ(loopAround({{0, 0}}, {0, 0}), -1);
  EXPECT_EQ(enclosingLoops({}, {}).size(), 0U);
}

TEST(Geometry, SmallestLoopIsATriangle) { EXPECT_EQ(loopAround({{0, 0}, {10, 0}, {5, 8}, {0, -1}}, {5, 3}), 1); }

TEST(Geometry, OverlapClosesTheLoopBeforeIt) {
  // The last segment returns to the first one and runs along it, in either direction.
  const Points along{{0, 0}, {10, 0}, {10, 10}, {2, 10}, {2, 0}, {8, 0}};
  EXPECT_EQ(loopAround(along, {5, 5}), 1);
  const Points against{{0, 0}, {10, 0}, {10, 10}, {-5, 10}, {-5, 0}, {8, 0}};
  EXPECT_EQ(loopAround(against, {5, 5}), 1);
  EXPECT_EQ(loopAround(against, {-2, 5}), 1);
  const Points beside{{0, 0}, {10, 0}, {10, 10}, {-5, 10}, {-5, 0}, {-1, 0}};
  EXPECT_EQ(loopAround(beside, {5, 5}), -1) << "on the same line, without a shared point";
}

TEST(Geometry, LoopWithoutAnInsideEnclosesNobody) {
  const Points line{{0, 0}, {10, 0}, {20, 0}, {5, 0}};
  for (std::int64_t x = -1; x <= 21; ++x) {
    for (std::int64_t y = -1; y <= 1; ++y) EXPECT_EQ(loopAround(line, {x, y}), -1);
  }
}

TEST(Geometry, EveryCrossedOlderSegmentClosesItsOwnLoop) {
  // The last segment, along y = 5, crosses x = 10 (the second segment) and x = 20 (the one before). The short loop is
  // to the right of x = 20, and only the long one contains the part between the two.
  const Points tail{{10, -10}, {10, 10}, {20, 10}, {20, -10}, {30, -10}, {30, 5}, {0, 5}};
  EXPECT_EQ(loopAround(tail, {25, 0}), 1);
  EXPECT_EQ(loopAround(tail, {15, 7}), 1);
  EXPECT_EQ(loopAround(tail, {15, 0}), -1);
  EXPECT_EQ(loopAround(tail, {25, 7}), -1);
}

TEST(Geometry, TheLongestLoopIsNamed) {
  // A small square inside the big one, closed by the same last segment: up along x = 5.
  const Points tail{{0, 0}, {20, 0}, {20, 20}, {-5, 20}, {-5, 4}, {10, 4}, {10, 8}, {5, 8}, {5, -3}};
  EXPECT_EQ(loopAround(tail, {7, 6}), 1);
  EXPECT_EQ(loopAround(tail, {15, 10}), 1);
  EXPECT_EQ(loopAround(tail, {2, 2}), -1) << "left of the last segment and below the way in";
  const Points shortOnly{{-5, 20}, {-5, 4}, {10, 4}, {10, 8}, {5, 8}, {5, 3}};
  EXPECT_EQ(loopAround(shortOnly, {7, 6}), 2);
}

TEST(Geometry, TwiceAroundIsInsideToo) {
  // Two turns around (0, 0). The outer one ends where the tail starts.
  const Points tail{{-10, -10}, {8, -10}, {8, 8}, {-8, 8}, {-8, -8}, {9, -8}, {9, 9}, {-10, 9}, {-10, -12}};
  EXPECT_EQ(loopAround(tail, {0, 0}), 1);
}

TEST(Geometry, BothEyesOfAFigureEightAreInside) {
  // Two triangles that meet at (5, 5), turning opposite ways.
  const Points tail{{0, 0}, {10, 10}, {10, 0}, {0, 10}, {0, -1}};
  EXPECT_EQ(loopAround(tail, {1, 5}), 1);
  EXPECT_EQ(loopAround(tail, {9, 5}), 1);
  EXPECT_EQ(loopAround(tail, {5, 8}), -1);
  EXPECT_EQ(loopAround(tail, {5, 2}), -1);
}

TEST(Geometry, ALoopMayBeAsSmallAsThreeGridPoints) {
  EXPECT_EQ(loopAround({{0, 0}, {2, 0}, {1, 2}, {0, 0}}, {1, 1}), 1);
  EXPECT_EQ(loopAround({{0, 0}, {2, 0}, {1, 2}, {0, 0}}, {1, 0}), -1);
}

TEST(Geometry, ALoopMayBeAsLargeAsTheWorld) {
  constexpr std::int64_t end = 102'400'000;
  // The last segment crosses the first one between grid points: at (1/3, 0).
  const Points tail{{0, 0}, {end, 0}, {end, end}, {1, 2}, {0, -1}};
  EXPECT_EQ(loopAround(tail, {end / 2, 1}), 1);
  EXPECT_EQ(loopAround(tail, {end - 1, end - 2}), 1);
  EXPECT_EQ(loopAround(tail, {end / 2, end - 1}), -1);
  EXPECT_EQ(loopAround(tail, {1, 1}), 1) << "a point inside the corner";
  EXPECT_EQ(loopAround(tail, {0, 1}), -1);
}

TEST(Geometry, RepeatedVerticesDoNoHarm) {
  const Points tail{{-2, 0}, {-2, 0}, {10, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 10}, {0, -2}};
  EXPECT_EQ(loopAround(tail, {5, 5}), 2);
  EXPECT_EQ(loopAround({{0, 0}, {10, 0}, {10, 10}, {0, 0}, {0, 0}}, {8, 5}), -1) << "nothing moved";
}

class RandomTails : public testing::TestWithParam<int> {};

TEST_P(RandomTails, GiveTheSameLoopsAsTheSlowTwin) {
  const int size = GetParam();
  std::mt19937 random(static_cast<unsigned>(size));
  std::uniform_int_distribution<int> coordinate(0, size);
  std::uniform_int_distribution<int> length(2, 24);
  const auto point = [&] { return GridPoint{coordinate(random), coordinate(random)}; };
  int inside = 0;
  int outside = 0;
  for (int round = 0; round < 1'500; ++round) {
    Points tail(static_cast<std::size_t>(length(random)));
    for (GridPoint& vertex : tail) vertex = point();
    Points places(5);
    for (GridPoint& place : places) place = point();
    const auto loops = enclosingLoops(tail, places);
    ASSERT_EQ(loops, slowEnclosingLoops(tail, places)) << "round " << round;
    // As large as the world, where the products of coordinates are largest.
    const std::int64_t factor = 102'400'000 / size;
    ASSERT_EQ(loops, enclosingLoops(scaled(tail, factor), scaled(places, factor))) << "round " << round;
    for (const auto& loop : loops) ++(loop ? inside : outside);
  }
  EXPECT_GT(inside, 200) << "the tails would show nothing";
  EXPECT_GT(outside, 200);
}

INSTANTIATE_TEST_SUITE_P(Grids, RandomTails, testing::Values(3, 5, 8, 20, 200, 2'000));

TEST(Geometry, AWalkInSmallStepsGivesTheSameLoopsAsTheSlowTwin) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> step(-2, 2);
  for (int round = 0; round < 300; ++round) {
    Points tail{{0, 0}};
    Points places{{1, 1}, {-2, 1}, {3, -2}, {0, 2}, {-3, -3}};
    for (int i = 0; i < 40; ++i) {
      tail.push_back({tail.back().x + step(random), tail.back().y + step(random)});
      ASSERT_EQ(enclosingLoops(tail, places), slowEnclosingLoops(tail, places)) << "round " << round << ", " << i;
    }
  }
}

}  // namespace
}  // namespace kelvora::server
