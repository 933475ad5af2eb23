#include "app/player/snapshotPlan.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora::player {
namespace {

class SnapshotPlanTest : public testing::Test {
 protected:
  /// The times of all snapshots in so many hours.
  static std::vector<Millis> times(Millis hours, double pixels) {
    SnapshotPlan plan(120'000);
    std::vector<Millis> all;
    for (Millis now = 0; now <= hours * 3'600'000; now += 10'000) {
      if (!plan.isDue(now)) continue;
      all.push_back(now);
      plan.leave(now, pixels);
    }
    return all;
  }
};

TEST_F(SnapshotPlanTest, LeavesOneEveryTwoMinutesInTheFirstHour) {
  EXPECT_EQ(times(1, 800 * 600).size(), 31U);
  EXPECT_EQ(times(1, 1920 * 1040).size(), 31U);
}

TEST_F(SnapshotPlanTest, LeavesABoundedNumber) { EXPECT_EQ(times(1000, 800 * 600).size(), 100U); }

TEST_F(SnapshotPlanTest, LeavesFewerOfLargeWindows) {
  constexpr double pixels = 36'000'000;
  const std::vector<Millis> few = times(1000, pixels);
  EXPECT_GE(few.size(), 2U);
  EXPECT_LT(static_cast<double>(few.size() - 1) * pixels, SnapshotPlan::maxPixels);
  EXPECT_GT(few[1], 600'000);
}

}  // namespace
}  // namespace kelvora::player
