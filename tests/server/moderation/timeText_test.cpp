#include "server/moderation/timeText.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

TEST(TimeText, LengthsHaveAUnit) {
  EXPECT_EQ(readLength("90s"), 90);
  EXPECT_EQ(readLength("30m"), 1'800);
  EXPECT_EQ(readLength("2h"), 7'200);
  EXPECT_EQ(readLength("7d"), 604'800);
  EXPECT_EQ(readLength("36500d"), 3'153'600'000);
  EXPECT_EQ(readLength("forever"), never);
  for (const char* text : {"", "h", "2", "0s", "-2h", "+2h", "2 h", "2w", "2H", "36501d", "99999999999999999999s",
                           "1.5h", "2hh", "forever1"}) {
    EXPECT_EQ(readLength(text), std::nullopt) << text;
  }
}

TEST(TimeText, TimesAreUtc) {
  EXPECT_EQ(timeText(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(timeText(951'827'696), "2000-02-29T12:34:56Z");
  EXPECT_EQ(timeText(never), "forever");
  EXPECT_EQ(untilText(951'827'696), "until 2000-02-29 12:34 UTC");
  EXPECT_EQ(untilText(never), "forever");
  EXPECT_EQ(endOf(100, never), never);
  EXPECT_EQ(endOf(100, 5), 105);
}

TEST(TimeText, TimesAreReadInOneFormOnly) {
  EXPECT_EQ(readTime("1970-01-01T00:00:00Z"), 0);
  EXPECT_EQ(readTime("2000-02-29T12:34:56Z"), 951'827'696);
  EXPECT_EQ(readTime("9999-12-31T23:59:59Z"), 253'402'300'799);
  EXPECT_EQ(readTime("forever"), never);
  for (const char* text :
       {"", "2001-02-29T12:34:56Z", "2000-13-01T00:00:00Z", "2000-01-00T00:00:00Z", "2000-01-01T24:00:00Z",
        "2000-01-01T00:60:00Z", "2000-01-01T00:00:60Z", "1969-12-31T23:59:59Z", "2000-01-01 00:00:00Z",
        "2000-01-01T00:00:00", "2000-01-01T00:00:00Z ", "2000-01-01T00:00:-1Z", "20000-01-01T00:00:00"}) {
    EXPECT_EQ(readTime(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kelvora::server
