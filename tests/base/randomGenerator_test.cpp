#include "base/randomGenerator.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>
#include <vector>

#include "base/bitCast.h"

namespace kelvora {
namespace {

TEST(RandomGenerator, VisitsEveryNumberOncePerPeriod) {
  constexpr std::size_t period = 1U << 24;
  RandomGenerator generator;
  std::vector<char> seen(period);
  for (std::size_t i = 0; i < period; ++i) {
    const double scaled = static_cast<double>(generator.next()) * 16777216.0;
    // An assertion for each condition would take most of the time.
    if (scaled < 0.0 || scaled >= 16777216.0) FAIL() << scaled;
    if (scaled != std::floor(scaled)) FAIL() << scaled << ": a number is its state over 2^24, exactly";
    if (seen[static_cast<std::size_t>(scaled)]++ != 0) FAIL() << scaled << " again";
  }
}

TEST(RandomGenerator, RepeatsTheSequenceOfASeed) {
  RandomGenerator first;
  RandomGenerator second;
  first.next();
  first.randomize(43210.5F);
  second.randomize(43210.5F);
  for (int i = 0; i < 100; ++i) ASSERT_EQ(first.next(), second.next());
}

TEST(RandomGenerator, UsesEveryBitOfTheSeed) {
  for (int bit = 0; bit < 32; ++bit) {
    RandomGenerator plain;
    RandomGenerator changed;
    plain.randomize(1000.0F);
    changed.randomize(bitCast<float>(bitCast<std::uint32_t>(1000.0F) ^ (std::uint32_t{1} << bit)));
    EXPECT_NE(plain.next(), changed.next()) << "bit " << bit;
  }
}

TEST(RandomGenerator, ContinuesForAPositiveArgument) {
  RandomGenerator withArgument;
  RandomGenerator without;
  for (const float argument : {1.0F, 0.001F, 99999.0F, 1e-30F}) ASSERT_EQ(withArgument.next(argument), without.next());
}

TEST(RandomGenerator, RepeatsTheLastNumberForZero) {
  RandomGenerator generator;
  const float drawn = generator.next();
  EXPECT_EQ(generator.next(0.0F), drawn);
  EXPECT_EQ(generator.next(0.0F), drawn);
  EXPECT_EQ(generator.next(-0.0F), drawn);
  EXPECT_NE(generator.next(), drawn);
}

TEST(RandomGenerator, RestartsFromANegativeArgument) {
  RandomGenerator generator;
  const float first = generator.next(-17.25F);
  const float second = generator.next();
  for (int i = 0; i < 10; ++i) generator.next();
  EXPECT_EQ(generator.next(-17.25F), first);
  EXPECT_EQ(generator.next(), second);
  EXPECT_NE(generator.next(-17.5F), first);
}

TEST(RandomGenerator, SpreadsEvenlyOverTenths) {
  RandomGenerator generator;
  generator.randomize(1.0F);
  std::array<int, 10> counts{};
  for (int i = 0; i < 100000; ++i) ++counts.at(static_cast<std::size_t>(generator.next() * 10.0F));
  // 10000 are expected in each; five standard deviations are about 470.
  for (const int count : counts) EXPECT_NEAR(count, 10000, 470);
}

TEST(RandomGenerator, ScattersPairsOfConsecutiveDraws) {
  RandomGenerator generator;
  generator.randomize(2.0F);
  std::set<int> cells;
  for (int i = 0; i < 20000; ++i) {
    const int column = static_cast<int>(generator.next() * 32.0F);
    const int row = static_cast<int>(generator.next() * 32.0F);
    cells.insert(row * 32 + column);
  }
  EXPECT_EQ(cells.size(), 1024U);
}

}  // namespace
}  // namespace kelvora
