#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::fuzz {

/// A number of any size, exactly, digit by digit: slow, and simple enough to be right. Its value is
/// sign * 0.d1d2d3... * 10^exponent, with no zero at either end of the digits; zero has none.
struct ExactNumber {
  bool isNegative = false;
  std::vector<int> digits;
  std::int64_t exponent = 0;

  /// Every binary fraction has an end in decimals.
  static ExactNumber of(double value);
  /// Digits, perhaps with a point among them, times ten to a power.
  static ExactNumber ofDecimal(std::string_view digitsAndPoint, std::int64_t power);
  /// Of two numbers that are not negative.
  static ExactNumber sumOf(double one, double other);
  static ExactNumber midwayBetween(double one, double other);

  bool isZero() const { return digits.empty(); }
  /// Compares without the signs.
  std::strong_ordering compareMagnitude(const ExactNumber& other) const;

  enum class Ties { toEven, away };
  /// Keeps the digits down to that of 10^-places.
  ExactNumber roundedTo(std::int64_t places, Ties ties) const;
  /// Keeps so many digits.
  ExactNumber withDigits(std::int64_t count) const { return roundedTo(count - exponent, Ties::toEven); }
  /// The digit of 10^-place, for place 0 the one before the point.
  int digitAt(std::int64_t place) const;

 private:
  /// The sum times a factor, and ten to a power.
  static ExactNumber scaledSum(double one, double other, int factor, std::int64_t power);
  void trim();
};

}  // namespace kelvora::fuzz
