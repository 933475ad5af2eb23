#include "server/arena/plane.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

TEST(Plane, SegmentsThatCrossOrTouchHaveNoDistance) {
  EXPECT_EQ(segmentDistance({0, 0}, {10, 10}, {0, 10}, {10, 0}), 0);
  EXPECT_EQ(segmentDistance({0, 0}, {10, 0}, {5, 0}, {5, 10}), 0);
  EXPECT_EQ(segmentDistance({0, 0}, {10, 0}, {4, 0}, {6, 0}), 0);
  EXPECT_EQ(segmentDistance({3, 3}, {3, 3}, {3, 3}, {3, 3}), 0);
}

TEST(Plane, TheSegmentDistanceIsTheShortest) {
  EXPECT_EQ(segmentDistance({0, 0}, {10, 0}, {5, 3}, {5, 10}), 3) << "an end over the middle";
  EXPECT_EQ(segmentDistance({5, 3}, {5, 10}, {0, 0}, {10, 0}), 3);
  EXPECT_EQ(segmentDistance({0, 0}, {10, 0}, {13, 4}, {20, 4}), 5) << "end to end, 3 and 4";
  EXPECT_EQ(segmentDistance({0, 0}, {10, 0}, {0, 7}, {10, 7}), 7) << "side by side";
  EXPECT_EQ(segmentDistance({4, 2}, {4, 2}, {0, 0}, {10, 0}), 2) << "a point and a segment";
  EXPECT_EQ(segmentDistance({0, 0}, {0, 0}, {3, 4}, {3, 4}), 5) << "two places";
}

TEST(Plane, ABeamEndsAtTheWorldsEdge) {
  EXPECT_EQ(worldEdge({50'000, 50'000}, {1, 0}), (Point{100'000, 50'000}));
  EXPECT_EQ(worldEdge({50'000, 50'000}, {-8, 0}), (Point{0, 50'000}));
  EXPECT_EQ(worldEdge({50'000, 50'000}, {0, 2}), (Point{50'000, 100'000}));
  EXPECT_EQ(worldEdge({50'000, 50'000}, {0, -2}), (Point{50'000, 0}));
  EXPECT_EQ(worldEdge({90'000, 50'000}, {1, 2}), (Point{100'000, 70'000})) << "the side comes first";
  EXPECT_EQ(worldEdge({90'000, 90'000}, {1, 2}), (Point{95'000, 100'000})) << "the bottom comes first";
  EXPECT_EQ(worldEdge({0, 5}, {-1, 0}), (Point{0, 5})) << "there already";
}

}  // namespace
}  // namespace kelvora::server
