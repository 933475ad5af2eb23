#include "server/net/stallWatch.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

StallWatch::Clock::time_point at(milliseconds time) { return StallWatch::Clock::time_point(seconds(1'000) + time); }

TEST(StallWatch, FirstTickIsNeverLate) { EXPECT_EQ(StallWatch().stoppedFor(at(seconds(100))), seconds(0)); }

TEST(StallWatch, LateTickIsNoStall) {
  StallWatch watch;
  watch.stoppedFor(at(milliseconds(0)));
  EXPECT_EQ(watch.stoppedFor(at(milliseconds(40))), seconds(0));
  EXPECT_EQ(watch.stoppedFor(at(milliseconds(5'040))), seconds(0));
}

TEST(StallWatch, StallIsReportedOnce) {
  StallWatch watch;
  watch.stoppedFor(at(seconds(0)));
  EXPECT_EQ(watch.stoppedFor(at(seconds(3'600))), seconds(3'600));
  EXPECT_EQ(watch.stoppedFor(at(milliseconds(3'600'040))), seconds(0));
}

}  // namespace
}  // namespace kelvora::server
