#include "app/clockText.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(ClockText, ShowsHoursOnlyIfThereAreAny) {
  EXPECT_EQ(clockText(0), "0:00");
  EXPECT_EQ(clockText(59'999), "0:59");
  EXPECT_EQ(clockText(754'000), "12:34");
  EXPECT_EQ(clockText(3'723'000), "1:02:03");
}

TEST(ClockText, ReadsWhatAUserTypes) {
  EXPECT_EQ(timeFromText("7"), 7000);
  EXPECT_EQ(timeFromText("12:34"), 754'000);
  EXPECT_EQ(timeFromText("1:02:03"), 3'723'000);
  for (const char* text : {"", ":", "1:", "a", "-1", "1:2:3:4", "9999999"}) EXPECT_EQ(timeFromText(text), std::nullopt);
}

}  // namespace
}  // namespace kelvora
