#include "base/numbers.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <limits>

#include "tests/support/faultOf.h"

namespace kelvora {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(RoundToEven, RoundsHalvesToTheEvenNeighbour) {
  EXPECT_EQ(roundToEven(0.5), 0);
  EXPECT_EQ(roundToEven(1.5), 2);
  EXPECT_EQ(roundToEven(2.5), 2);
  EXPECT_EQ(roundToEven(3.5), 4);
  EXPECT_EQ(roundToEven(-0.5), 0);
  EXPECT_EQ(roundToEven(-1.5), -2);
  EXPECT_EQ(roundToEven(-2.5), -2);
  EXPECT_EQ(roundToEven(4503599627370495.5), 4503599627370496.0);
}

TEST(RoundToEven, RoundsEverythingElseToTheNearest) {
  EXPECT_EQ(roundToEven(2.4999999), 2);
  EXPECT_EQ(roundToEven(2.5000001), 3);
  EXPECT_EQ(roundToEven(-2.5000001), -3);
  EXPECT_EQ(roundToEven(0.49999999999999994), 0);
  EXPECT_EQ(roundToEven(1e300), 1e300);
  EXPECT_TRUE(std::isnan(roundToEven(notANumber)));
}

TEST(RoundToEven, IgnoresTheRoundingModeOfTheProcessor) {
  std::fesetround(FE_UPWARD);
  const double two = roundToEven(2.5);
  const double minusTwo = roundToEven(-2.25);
  std::fesetround(FE_DOWNWARD);
  const double four = roundToEven(3.5);
  std::fesetround(FE_TONEAREST);
  EXPECT_EQ(two, 2);
  EXPECT_EQ(minusTwo, -2);
  EXPECT_EQ(four, 4);
}

TEST(ToInt16, RoundsToEven) {
  EXPECT_EQ(toInt16(2.5), 2);
  EXPECT_EQ(toInt16(3.5), 4);
  EXPECT_EQ(toInt16(-0.4), 0);
}

TEST(ToInt16, CoversItsWholeRange) {
  EXPECT_EQ(toInt16(32767.49), 32767);
  EXPECT_EQ(toInt16(-32768.5), -32768);
  EXPECT_EQ(faultOf([] { toInt16(32767.5); }), "Overflow");
  EXPECT_EQ(faultOf([] { toInt16(-32768.51); }), "Overflow");
}

TEST(ToInt32, CoversItsWholeRange) {
  EXPECT_EQ(toInt32(2147483647.25), 2147483647);
  EXPECT_EQ(toInt32(-2147483648.5), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(faultOf([] { toInt32(2147483647.5); }), "Overflow");
  EXPECT_EQ(faultOf([] { toInt32(-2147483649.0); }), "Overflow");
}

TEST(ToByte, CoversItsWholeRange) {
  EXPECT_EQ(toByte(255.49), 255);
  EXPECT_EQ(toByte(-0.5), 0);
  EXPECT_EQ(faultOf([] { toByte(255.5); }), "Overflow");
  EXPECT_EQ(faultOf([] { toByte(-0.51); }), "Overflow");
}

TEST(Conversions, FaultOnNaN) {
  EXPECT_EQ(faultOf([] { toInt16(notANumber); }), "Overflow");
  EXPECT_EQ(faultOf([] { toInt32(notANumber); }), "Overflow");
  EXPECT_EQ(faultOf([] { toByte(notANumber); }), "Overflow");
  EXPECT_EQ(faultOf([] { toSingle(notANumber); }), "Overflow");
  EXPECT_EQ(faultOf([] { toInt32(infinite); }), "Overflow");
  EXPECT_EQ(faultOf([] { toSingle(-infinite); }), "Overflow");
}

TEST(ToSingle, RoundsToTheNearestSingle) {
  EXPECT_EQ(toSingle(0.1), 0.1F);
  EXPECT_EQ(toSingle(16777217.0), 16777216.0F);  // half-way, the even one
  EXPECT_EQ(toSingle(16777219.0), 16777220.0F);
  EXPECT_EQ(toSingle(1e-60), 0.0F);
}

TEST(ToSingle, FaultsBeyondTheLargestSingle) {
  EXPECT_EQ(toSingle(3.4028234e38), 3.4028234e38F);
  EXPECT_EQ(faultOf([] { toSingle(3.5e38); }), "Overflow");
  EXPECT_EQ(faultOf([] { toSingle(-1e300); }), "Overflow");
}

}  // namespace
}  // namespace kelvora
