#include "platform/windowing/framePacer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace kelvora {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

FramePacer::TimePoint at(microseconds time) { return FramePacer::TimePoint(std::chrono::seconds(1000) + time); }

TEST(FramePacer, FirstPassLastsAFrame) {
  FramePacer pacer(milliseconds(10));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(3))), at(milliseconds(13)));
}

TEST(FramePacer, EndsAreOnOneScheduleHoweverLongTheWorkTakes) {
  FramePacer pacer(milliseconds(10));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(0))), at(milliseconds(10)));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(14))), at(milliseconds(20)));
  EXPECT_EQ(pacer.passEnd(at(microseconds(20'500))), at(milliseconds(30)));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(38))), at(milliseconds(40)));
}

TEST(FramePacer, MakesUpForThreeFrames) {
  FramePacer pacer(milliseconds(10));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(0))), at(milliseconds(10)));
  // 30 ms behind its end at 20: no wait until it has caught up.
  EXPECT_EQ(pacer.passEnd(at(milliseconds(50))), at(milliseconds(20)));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(51))), at(milliseconds(30)));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(52))), at(milliseconds(40)));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(53))), at(milliseconds(50)));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(54))), at(milliseconds(60)));
}

TEST(FramePacer, RestartsWhenFurtherBehind) {
  FramePacer pacer(milliseconds(10));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(0))), at(milliseconds(10)));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(51))), at(milliseconds(51)));
  EXPECT_EQ(pacer.passEnd(at(milliseconds(52))), at(milliseconds(61)));
}

TEST(FramePacer, ReadsOneToAThousandInPlainDigits) {
  EXPECT_EQ(frameFromText("10"), milliseconds(10));
  EXPECT_EQ(frameFromText("1"), milliseconds(1));
  EXPECT_EQ(frameFromText("1000"), milliseconds(1000));
}

#ifndef _WIN32  // has another setenv

TEST(FramePacer, WarnsOfAWrongLengthInTheEnvironment) {
  const auto read = [](const char* text) {
    ::setenv("KELVORA_FRAME_MS", text, 1);
    testing::internal::CaptureStderr();
    const auto frame = frameFromEnvironment();
    ::unsetenv("KELVORA_FRAME_MS");
    return std::pair(frame, testing::internal::GetCapturedStderr());
  };
  using Length = std::optional<milliseconds>;
  EXPECT_EQ(read("10"), std::pair(Length(10), std::string()));
  EXPECT_EQ(read(""), std::pair(Length(), std::string()));
  EXPECT_EQ(read("0"), std::pair(Length(), std::string()));
  EXPECT_EQ(read("abc"), std::pair(Length(), std::string("kelvora: KELVORA_FRAME_MS must be a number from 0 to 1000, "
                                                         "not \"abc\", so the game runs as fast as it can\n")));
  testing::internal::CaptureStderr();
  EXPECT_EQ(frameFromEnvironment(), std::nullopt) << "unset";
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

#endif

TEST(FramePacer, IgnoresAnyOtherText) {
  for (const char* text : {"", "0", "1001", "-5", "+5", " 10", "10 ", "10ms", "ten", "1.5", "99999999999999999999"}) {
    EXPECT_EQ(frameFromText(text), std::nullopt) << '"' << text << '"';
  }
}

}  // namespace
}  // namespace kelvora
