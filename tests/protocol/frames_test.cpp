#include "protocol/frames.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <string_view>
#include <tuple>

namespace kelvora {
namespace {

using wire::NumberText;

TEST(Frames, ASpawnRequestIsThreeBytes) { EXPECT_EQ(wire::toServer<wire::msgSpawnRequest>(), "\x80\x98\x81"); }

TEST(Frames, ALoginHasItsFieldsBetweenSeparators) {
  EXPECT_EQ(wire::toServer<wire::msgLogin>("Ann", "", 2, "9.9.9"),
            "\x80\x87"
            "Ann\x82\x82"
            "2\x82"
            "9.9.9\x81");
}

TEST(Frames, Q060NoDelimiterIsEscaped) {
  const std::string name =
      "A\x82"
      "B\x81";
  EXPECT_EQ(wire::toServer<wire::msgLogin>(name, "p", 0, ""),
            "\x80\x87"
            "A\x82"
            "B\x81\x82"
            "p\x82"
            "0\x82\x81");
}

TEST(Frames, WholeNumbersAreDecimalDigits) {
  const std::int16_t low = std::numeric_limits<std::int16_t>::min();
  EXPECT_EQ(wire::toClient<wire::msgAliveState>(low, true), "\x80\x9D-32768\x82\x31\x81");
  EXPECT_EQ(wire::toClient<wire::msgPing>(2'147'483'647), "\x80\x84\x32\x31\x34\x37\x34\x38\x33\x36\x34\x37\x81");
  const std::int64_t riches = 5'000'000'000;
  EXPECT_EQ(wire::toClient<wire::msgFunds>(3, riches), "\x80\x94\x33\x82\x35\x30\x30\x30\x30\x30\x30\x30\x30\x30\x81");
}

TEST(Frames, SinglesHaveSevenDigitsAndNoZeroBeforeThePoint) {
  EXPECT_EQ(wire::toServer<wire::msgPositionReport>(0.5F, -12345.678F), "\x80\x83.5\x82-12345.68\x81");
  EXPECT_EQ(wire::toServer<wire::msgPositionReport>(12'345'678.0F, 1.5e-8F),
            "\x80\x83\x31.234568E+07\x82\x31.5E-08\x81");
}

TEST(Frames, NumberTextIsForwardedUnchanged) {
  EXPECT_EQ(wire::toClient<wire::msgPosition>(4, NumberText{"007.50"}, NumberText{"1e2"}),
            "\x80\x86\x34\x82\x30\x30\x37.50\x82\x31"
            "e2\x81");
}

TEST(Frames, AMessageIsReadIntoItsTypes) {
  const auto capture = wire::fromServer<wire::msgTailCapture>("1\x82-2\x82.5\x82-1000000");
  ASSERT_TRUE(capture);
  const auto& [winner, loser, x, y] = *capture;
  static_assert(std::is_same_v<std::remove_cvref_t<decltype(winner)>, std::int16_t>);
  EXPECT_EQ(winner, 1);
  EXPECT_EQ(loser, -2);
  EXPECT_EQ(x.value, 0.5);
  EXPECT_EQ(x.text, ".5");
  EXPECT_EQ(y.value, -1'000'000.0);
  EXPECT_EQ(wire::fromServer<wire::msgPing>("70000"), std::tuple(70'000));
}

TEST(Frames, MessageMustHaveExactlyItsFields) {
  EXPECT_TRUE(wire::fromClient<wire::msgChat>("-1\x82hi"));
  EXPECT_TRUE(wire::fromClient<wire::msgChat>("-1\x82")) << "an empty text is one";
  EXPECT_FALSE(wire::fromClient<wire::msgChat>("-1"));
  EXPECT_FALSE(wire::fromClient<wire::msgChat>("-1\x82hi\x82"));
  EXPECT_FALSE(wire::fromClient<wire::msgBuyRequest>(""));
}

TEST(Frames, WholeFieldMustBeOfItsType) {
  for (const char* item : {"", " 1", "1 ", "+1", "1.0", "32768", "-32769", "1x", "x"}) {
    EXPECT_FALSE(wire::fromClient<wire::msgBuyRequest>(item)) << item;
  }
  EXPECT_EQ(wire::fromClient<wire::msgBuyRequest>("-32768"), std::tuple(std::int16_t{-32768}));
  for (const char* place : {"1\x82", "\x82\x31", "1\x82 2", "1\x82\x32 ", "1\x82\x31x"}) {
    EXPECT_FALSE(wire::fromClient<wire::msgPositionReport>(place)) << place;
  }
  EXPECT_FALSE(wire::fromServer<wire::msgPing>("2147483648"));
}

TEST(Frames, TextsAreReadUnchanged) {
  using Texts = std::array<std::string_view, 4>;
  constexpr auto read = wire::readTexts<wire::Direction::toServer, wire::msgLogin>;
  EXPECT_EQ(read("Ann\x82\x82 two\x82v"), (Texts{"Ann", "", " two", "v"}));
  EXPECT_EQ(read("Ann\x82\x82 two"), std::nullopt);
}

}  // namespace
}  // namespace kelvora
