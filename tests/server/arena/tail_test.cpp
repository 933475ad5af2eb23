#include "server/arena/tail.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

Spot spot(float x, float y) { return spotOf("x", "y", {x, y}); }

TEST(ServerTail, KeepsVerticesForTwoSeconds) {
  Tail tail;
  EXPECT_TRUE(tail.lay(spot(1, 1), 1'000, false, 0));
  EXPECT_TRUE(tail.lay(spot(2, 1), 1'500, true, 0));
  tail.prune(2'999);
  ASSERT_EQ(tail.vertices().size(), 2U);
  EXPECT_FALSE(tail.vertices()[0].isCharged);
  EXPECT_TRUE(tail.vertices()[1].isCharged);
  EXPECT_EQ(tail.points()[1], (GridPoint{2'048, 1'024}));
  tail.prune(3'000);
  ASSERT_EQ(tail.vertices().size(), 1U);
  EXPECT_EQ(tail.points().size(), 1U);
  EXPECT_EQ(tail.points()[0], (GridPoint{2'048, 1'024}));
  tail.prune(3'500);
  EXPECT_TRUE(tail.vertices().empty());
}

TEST(ServerTail, SameSpotIsLaidOnce) {
  Tail tail;
  EXPECT_TRUE(tail.lay(spot(1, 1), 0, false, 0));
  EXPECT_FALSE(tail.lay(spot(1, 1), 10, false, 0));
  EXPECT_TRUE(tail.lay(spot(1, 1.0001F), 20, false, 0))
      << "a different position to clients, though the same one on the grid";
  EXPECT_TRUE(tail.lay(spot(1, 1), 30, false, 0));
  EXPECT_EQ(tail.vertices().size(), 3U);
}

TEST(ServerTail, ExtensionNeverShortensALifetime) {
  Tail tail;
  tail.lay(spot(1, 1), 0, false, 0);
  tail.lay(spot(2, 2), 900, false, 0);
  tail.extend(2'500);
  EXPECT_EQ(tail.vertices()[0].endsAt, 2'500);
  EXPECT_EQ(tail.vertices()[1].endsAt, 2'900);
}

TEST(ServerTail, NeverGrowsBeyondItsLimit) {
  Tail tail;
  for (int i = 0; i < 4'010; ++i) tail.lay(spot(static_cast<float>(i), 0), 0, false, 1'000'000);
  EXPECT_EQ(tail.vertices().size(), 4'000U);
  EXPECT_EQ(tail.points().front(), (GridPoint{10 * 1'024, 0}));
}

}  // namespace
}  // namespace kelvora::server
