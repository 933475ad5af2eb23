#pragma once

#include <compare>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kelvora::fuzz {

/// An exact number of any size, computed digit by digit: slow, but obviously correct. Its value is sign * 0.d1d2d3... *
/// 10^exponent, without zeros at either end of the digits. Zero has no digits.
struct ExactNumber {
  bool isNegative = false;
  std::vector<int> digits;
  std::int64_t exponent = 0;

  /// Exact, because every binary fraction is a finite decimal.
  static ExactNumber of(double value);
  /// Decimal digits with an optional point, times a power of ten.
  static ExactNumber ofDecimal(std::string_view digitsAndPoint, std::int64_t power);
  /// Of numbers that are not negative.
  static ExactNumber sumOf(double one, double other);
  static ExactNumber midwayBetween(double one, double other);

  bool isZero() const { return digits.empty(); }
  /// Compares absolute values.
  std::strong_ordering compareMagnitude(const ExactNumber& other) const;

  enum class Ties { toEven, away };
  /// Rounds at the digit of 10^-places.
  ExactNumber roundedTo(std::int64_t places, Ties ties) const;
  /// Rounds to that many digits.
  ExactNumber withDigits(std::int64_t count) const { return roundedTo(count - exponent, Ties::toEven); }
  /// The digit of 10^-place. Place 0 is the one before the point.
  int digitAt(std::int64_t place) const;

 private:
  /// The sum times a factor and a power of ten.
  static ExactNumber scaledSum(double one, double other, int factor, std::int64_t power);
  void trim();
};

}  // namespace kelvora::fuzz
