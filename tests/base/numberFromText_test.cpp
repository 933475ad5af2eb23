#include "base/numberFromText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace kelvora {
namespace {

TEST(NumberFromText, ReadsIntegersThatFit) {
  EXPECT_EQ(numberFromText<std::int16_t>("-32768"), -32'768);
  EXPECT_EQ(numberFromText<std::int16_t>("007"), 7);
  for (const char* text : {"", " 1", "1 ", "+1", "1.0", "1e2", "0x1", "32768", "-", "x"}) {
    EXPECT_EQ(numberFromText<std::int16_t>(text), std::nullopt) << text;
  }
}

TEST(NumberFromText, ReadsDecimalsInEveryNotation) {
  EXPECT_EQ(numberFromText<double>("-12.5"), -12.5);
  EXPECT_EQ(numberFromText<double>(".5"), 0.5);
  EXPECT_EQ(numberFromText<double>("5."), 5.0);
  EXPECT_EQ(numberFromText<double>("25e-1"), 2.5);
  EXPECT_EQ(numberFromText<double>("1E+3"), 1000.0);
  EXPECT_EQ(numberFromText<double>("1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_EQ(numberFromText<double>("0e999"), 0.0);
  EXPECT_TRUE(std::signbit(numberFromText<double>("-0").value()));
  EXPECT_EQ(numberFromText<double>("-inf"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(numberFromText<double>("Infinity"), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(numberFromText<double>("NaN").value()));
}

TEST(NumberFromText, RefusesWhatIsNotOneDecimal) {
  for (const char* text : {"",    ".",    "-",  "-.",  "e5",    "1e",     "1e+",    "1.2.3",   "--1", "+1", " 1",  "1 ",
                           "1\t", "0x10", "1f", "1,5", "1e400", "-1e400", "1e-400", "infinit", "na",  "in", "1inf"}) {
    EXPECT_EQ(numberFromText<double>(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kelvora
