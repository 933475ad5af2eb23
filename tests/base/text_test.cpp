#include "base/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

#include "base/bitCast.h"
#include "base/fault.h"
#include "tests/support/faultOf.h"

namespace kelvora {
namespace {

TEST(TrimBlanks, RemovesOnlyBlanksAndOnlyAtTheEnds) {
  EXPECT_EQ(trimBlanks("  a b  "), "a b");
  EXPECT_EQ(trimBlanks("\ta\r\n"), "\ta\r\n");
  EXPECT_EQ(trimBlanks("   "), "");
  EXPECT_EQ(trimBlanks(""), "");
}

TEST(LowerCase, CoversTheCodePage) {
  EXPECT_EQ(lowerCase("ALWAYS az-09@[`{"), "always az-09@[`{");
  EXPECT_EQ(lowerCase("\xC0\xD6\xD8\xDE"), "\xE0\xF6\xF8\xFE");
  EXPECT_EQ(lowerCase("\x8A\x8C\x8E\x9F"), "\x9A\x9C\x9E\xFF");
  EXPECT_EQ(lowerCase("\xD7\xDF\xF7\x80\x82"), "\xD7\xDF\xF7\x80\x82") << "no letters, or lower case already";
}

TEST(NumberText, WritesWholeNumbersPlainly) {
  EXPECT_EQ(numberText(0.0F), "0");
  EXPECT_EQ(numberText(-0.0F), "0");
  EXPECT_EQ(numberText(7.0F), "7");
  EXPECT_EQ(numberText(-1.0F), "-1");
  EXPECT_EQ(numberText(100000.0F), "100000");
  EXPECT_EQ(numberText(9999999.0F), "9999999");
}

TEST(NumberText, HasNoZeroBeforeThePoint) {
  EXPECT_EQ(numberText(0.5F), ".5");
  EXPECT_EQ(numberText(-0.5F), "-.5");
  EXPECT_EQ(numberText(0.001F), ".001");
  EXPECT_EQ(numberText(0.0625F), ".0625");
}

TEST(NumberText, KeepsFifteenDigitsOfADouble) {
  EXPECT_EQ(numberText(0.0), "0");
  EXPECT_EQ(numberText(-0.0), "0");
  EXPECT_EQ(numberText(27.75), "27.75");
  EXPECT_EQ(numberText(-0.5), "-.5");
  EXPECT_EQ(numberText(123456789.0), "123456789");
  EXPECT_EQ(numberText(1.0 / 3.0), ".333333333333333");
  EXPECT_EQ(numberText(999999999999999.0), "999999999999999");
  EXPECT_EQ(numberText(1e15), "1E+15");
  EXPECT_EQ(numberText(-2.5e100), "-2.5E+100");
  EXPECT_THROW(numberText(std::numeric_limits<double>::infinity()), RuntimeFault);
}

TEST(NumberText, KeepsSevenSignificantDigits) {
  EXPECT_EQ(numberText(1.1F), "1.1");
  EXPECT_EQ(numberText(12345.678F), "12345.68");
  EXPECT_EQ(numberText(0.33333334F), ".3333333");
  EXPECT_EQ(numberText(0.6666667F), ".6666667");
  EXPECT_EQ(numberText(99999.99F), "99999.99");
  EXPECT_EQ(numberText(999999.94F), "999999.9");
  // The single nearest to 999999.97 is 1000000, the next one above 999999.9375.
  EXPECT_EQ(numberText(999999.97F), "1000000");
}

TEST(NumberText, RoundsTheExactValueTiesToEven) {
  // Exactly representable with eight digits: 1048576.5 and 1048577.5 lie half-way.
  EXPECT_EQ(numberText(1048576.5F), "1048576");
  EXPECT_EQ(numberText(1048577.5F), "1048578");
  EXPECT_EQ(numberText(1048576.625F), "1048577");
}

TEST(NumberText, SwitchesToExponentsAtTenMillion) {
  EXPECT_EQ(numberText(10000000.0F), "1E+07");
  EXPECT_EQ(numberText(12345678.0F), "1.234568E+07");
  EXPECT_EQ(numberText(-12345678.0F), "-1.234568E+07");
  EXPECT_EQ(numberText(10000005.0F), "1E+07") << "half-way, the even one";
  EXPECT_EQ(numberText(10000015.0F), "1.000002E+07");
  EXPECT_EQ(numberText(1e20F), "1E+20");
  EXPECT_EQ(numberText(std::numeric_limits<float>::max()), "3.402823E+38");
}

TEST(NumberText, SwitchesToExponentsBelowATenMillionth) {
  EXPECT_EQ(numberText(1e-7F), ".0000001");
  EXPECT_EQ(numberText(1.234567e-5F), ".00001234567");
  EXPECT_EQ(numberText(1.5e-8F), "1.5E-08");
  EXPECT_EQ(numberText(-9.876543e-12F), "-9.876543E-12");
  EXPECT_EQ(numberText(std::numeric_limits<float>::denorm_min()), "1.401298E-45");
}

TEST(NumberText, FaultsOnInfinityAndNaN) {
  EXPECT_EQ(faultOf([] { numberText(std::numeric_limits<float>::infinity()); }), "Overflow");
  EXPECT_EQ(faultOf([] { numberText(std::numeric_limits<float>::quiet_NaN()); }), "Overflow");
}

TEST(NumberText, WritesIntegersOfAllSizes) {
  EXPECT_EQ(numberText(std::int32_t{0}), "0");
  EXPECT_EQ(numberText(std::int32_t{-1}), "-1");
  EXPECT_EQ(numberText(std::int32_t{2147483647}), "2147483647");
  EXPECT_EQ(numberText(std::numeric_limits<std::int32_t>::min()), "-2147483648");
}

TEST(NumberText, MatchesTheLibrarysSevenDigitsForAnyNumber) {
  std::mt19937 draws(20240501);
  for (int i = 0; i < 200000; ++i) {
    const auto value = bitCast<float>(static_cast<std::uint32_t>(draws()));
    if (!std::isfinite(value)) continue;
    char expected[40];
    std::snprintf(expected, sizeof expected, "%.6e", static_cast<double>(value));
    const std::string text = numberText(value);
    ASSERT_EQ(std::strtod(text.c_str(), nullptr), std::strtod(expected, nullptr)) << expected << " as " << text;
    ASSERT_EQ(readNumber(text), std::strtod(expected, nullptr)) << text;
  }
}

TEST(NumberText, ReadsBackToTheSameNumberUpToTheSeventhDigit) {
  std::mt19937 draws(7);
  for (int i = 0; i < 200000; ++i) {
    const auto value = bitCast<float>(static_cast<std::uint32_t>(draws()));
    if (!std::isfinite(value) || std::fabs(value) > 3.4e38F) continue;
    // Below the normal range a single has fewer than seven digits.
    if (std::fabs(value) < 1.2e-38F && value != 0.0F) continue;
    const std::string text = numberText(value);
    const auto again = static_cast<float>(readNumber(text));
    ASSERT_NEAR(again / value, 1.0F, 1e-6F) << text;
    ASSERT_LE(text.size(), 18U);
    for (const char character : text) ASSERT_TRUE(std::string("0123456789.-+E").find(character) != std::string::npos);
  }
}

TEST(NumberText, OfPositionsReadsBackToTheSameText) {
  std::mt19937 draws(11);
  std::uniform_real_distribution<float> positions(0.0F, 100000.0F);
  for (int i = 0; i < 200000; ++i) {
    const std::string text = numberText(positions(draws));
    // Below 100000, neighbouring singles are closer together than neighbouring texts of seven digits.
    ASSERT_EQ(numberText(static_cast<float>(readNumber(text))), text);
  }
}

TEST(ReadNumber, StopsAtTheFirstCharacterThatDoesNotFit) {
  EXPECT_EQ(readNumber("12abc"), 12);
  EXPECT_EQ(readNumber("12.5.7"), 12.5);
  EXPECT_EQ(readNumber("12,5"), 12);
  EXPECT_EQ(readNumber("1 2"), 1);
  EXPECT_EQ(readNumber("7-3"), 7);
  EXPECT_EQ(readNumber("0x10"), 0);
  EXPECT_EQ(readNumber("&H10"), 0);
}

TEST(ReadNumber, ReturnsZeroWithoutANumber) {
  for (const char* text :
       {"", "   ", "abc", "-", "+", ".", "-.", "e5", ".e5", "--1", "nan", "inf", "-inf", "NaN", "\t1"}) {
    EXPECT_EQ(readNumber(text), 0) << '"' << text << '"';
  }
}

TEST(ReadNumber, ReadsSignPointAndExponent) {
  EXPECT_EQ(readNumber(".5"), 0.5);
  EXPECT_EQ(readNumber("-.5"), -0.5);
  EXPECT_EQ(readNumber("+3"), 3);
  EXPECT_EQ(readNumber("   42"), 42);
  EXPECT_EQ(readNumber("5."), 5);
  EXPECT_EQ(readNumber("1.5E+07"), 15000000);
  EXPECT_EQ(readNumber("1.5e-3x"), 0.0015);
  EXPECT_EQ(readNumber("2E2"), 200);
  EXPECT_EQ(readNumber("007"), 7);
}

TEST(ReadNumber, IgnoresAnExponentWithoutDigits) {
  EXPECT_EQ(readNumber("1e"), 1);
  EXPECT_EQ(readNumber("1e+"), 1);
  EXPECT_EQ(readNumber("1e-x"), 1);
}

TEST(ReadNumber, FaultsBeyondTheRangeOfADouble) {
  EXPECT_EQ(faultOf([] { readNumber("1E400"); }), "Overflow");
  EXPECT_EQ(faultOf([] { readNumber("-1E400"); }), "Overflow");
  EXPECT_EQ(faultOf([] { readNumber("1E99999999999999999999"); }), "Overflow");
  EXPECT_EQ(faultOf([] { readNumber(std::string(400, '9')); }), "Overflow");
  EXPECT_EQ(faultOf([] { readNumber(std::string(1000, '9') + "E-5"); }), "Overflow");
  EXPECT_EQ(readNumber("1E308"), 1e308);
}

TEST(ReadNumber, ReturnsZeroBelowTheRangeOfADouble) {
  EXPECT_EQ(readNumber("1E-400"), 0);
  EXPECT_EQ(readNumber("1E-99999999999999999999"), 0);
  EXPECT_EQ(readNumber("." + std::string(400, '0') + "1"), 0);
  EXPECT_EQ(readNumber("." + std::string(1000, '0') + "1E5"), 0);
  EXPECT_EQ(readNumber("0E400"), 0);
  EXPECT_EQ(readNumber("0E99999999999999999999"), 0);
}

TEST(ReadNumber, ReadsTheNearestDouble) {
  EXPECT_EQ(readNumber("0.1"), 0.1);
  EXPECT_EQ(readNumber("12345678901234567890"), 12345678901234567890.0);
  EXPECT_EQ(readNumber("9007199254740993"), 9007199254740992.0);
}

TEST(StrictNumber, RequiresTheWholeTextToBeOneNumber) {
  EXPECT_EQ(strictNumber("12"), 12);
  EXPECT_EQ(strictNumber(" -1.5E+01 "), -15);
  for (const char* text : {"", "  ", "12abc", "abc", "1 2", "1e", "-", ".", "True", "0x10"}) {
    EXPECT_EQ(faultOf([text] { strictNumber(text); }), "Type mismatch") << '"' << text << '"';
  }
  EXPECT_EQ(faultOf([] { strictNumber("1E400"); }), "Overflow");
}

TEST(StrictBoolean, ReadsWordsAndNumbers) {
  EXPECT_TRUE(strictBoolean("True"));
  EXPECT_TRUE(strictBoolean("TRUE"));
  EXPECT_FALSE(strictBoolean("false"));
  EXPECT_FALSE(strictBoolean("0"));
  EXPECT_TRUE(strictBoolean("-1"));
  EXPECT_TRUE(strictBoolean(".5"));
  for (const char* text : {"", "yes", "Truely", "1x"}) {
    EXPECT_EQ(faultOf([text] { strictBoolean(text); }), "Type mismatch") << '"' << text << '"';
  }
}

TEST(BooleanText, ReadsBackAsWritten) {
  EXPECT_EQ(booleanText(true), "True");
  EXPECT_EQ(booleanText(false), "False");
  EXPECT_TRUE(strictBoolean(booleanText(true)));
  EXPECT_FALSE(strictBoolean(booleanText(false)));
}

TEST(FormatThreeDigits, PadsWithZeros) {
  EXPECT_EQ(formatThreeDigits(0), "000");
  EXPECT_EQ(formatThreeDigits(7), "007");
  EXPECT_EQ(formatThreeDigits(42), "042");
  EXPECT_EQ(formatThreeDigits(1234), "1234");
  EXPECT_EQ(formatThreeDigits(-5), "-005");
  EXPECT_EQ(formatThreeDigits(std::numeric_limits<std::int32_t>::min()), "-2147483648");
}

TEST(FormatThousands, HasThreeDecimalsAndNoZeroBeforeThePoint) {
  EXPECT_EQ(formatThousands(0.0), ".000");
  EXPECT_EQ(formatThousands(0.5), ".500");
  EXPECT_EQ(formatThousands(50.0), "50.000");
  EXPECT_EQ(formatThousands(12.34567), "12.346");
  EXPECT_EQ(formatThousands(0.9996), "1.000");
}

TEST(FormatThousands, SeparatesThousandsByCommas) {
  EXPECT_EQ(formatThousands(999.0), "999.000");
  EXPECT_EQ(formatThousands(1000.0), "1,000.000");
  EXPECT_EQ(formatThousands(1234567.891), "1,234,567.891");
  EXPECT_EQ(formatThousands(123456789012.0), "123,456,789,012.000");
}

TEST(FormatThousands, RoundsHalvesAwayFromZero) {
  EXPECT_EQ(formatThousands(0.0625), ".063");
  EXPECT_EQ(formatThousands(0.1875), ".188");
  EXPECT_EQ(formatThousands(-0.0625), "-.063");
  EXPECT_EQ(formatThousands(562949953421311.9375), "562,949,953,421,311.938") << "the next double is whole";
}

TEST(FormatThousands, SignsNegativeNumbersButNotZero) {
  EXPECT_EQ(formatThousands(-0.5), "-.500");
  EXPECT_EQ(formatThousands(-1234.5), "-1,234.500");
  EXPECT_EQ(formatThousands(-0.0001), ".000");
  EXPECT_EQ(faultOf([] { formatThousands(std::numeric_limits<double>::quiet_NaN()); }), "Overflow");
}

}  // namespace
}  // namespace kelvora
