#include "tests/fuzz/exactNumber.h"

#include <algorithm>
#include <cmath>

namespace kelvora::fuzz {

namespace {

// Whole numbers as decimal digits, lowest first.
using Whole = std::vector<int>;

void multiply(Whole& number, int factor) {
  int carry = 0;
  for (int& digit : number) {
    carry += digit * factor;
    digit = carry % 10;
    carry /= 10;
  }
  for (; carry > 0; carry /= 10) number.push_back(carry % 10);
}

void add(Whole& number, const Whole& other) {
  number.resize(std::max(number.size(), other.size()));
  int carry = 0;
  for (std::size_t i = 0; i < number.size(); ++i) {
    carry += number[i] + (i < other.size() ? other[i] : 0);
    number[i] = carry % 10;
    carry /= 10;
  }
  if (carry > 0) number.push_back(carry);
}

}  // namespace

ExactNumber ExactNumber::of(double value) {
  ExactNumber number;
  number.isNegative = std::signbit(value);
  int power = 0;
  const auto mantissa = static_cast<std::uint64_t>(std::ldexp(std::frexp(std::fabs(value), &power), 53));
  power -= 53;
  Whole whole;
  for (std::uint64_t rest = mantissa; rest > 0; rest /= 10) whole.push_back(static_cast<int>(rest % 10));
  // 2^-n is 5^n / 10^n.
  for (int i = 0; i < std::abs(power); ++i) multiply(whole, power > 0 ? 2 : 5);
  number.exponent = static_cast<std::int64_t>(whole.size()) + std::min(power, 0);
  number.digits.assign(whole.rbegin(), whole.rend());
  number.trim();
  return number;
}

ExactNumber ExactNumber::ofDecimal(std::string_view digitsAndPoint, std::int64_t power) {
  ExactNumber number;
  bool isBehindPoint = false;
  for (const char c : digitsAndPoint) {
    if (c == '.') {
      isBehindPoint = true;
      continue;
    }
    number.digits.push_back(c - '0');
    if (!isBehindPoint) ++number.exponent;
  }
  number.exponent += power;
  number.trim();
  return number;
}

ExactNumber ExactNumber::sumOf(double one, double other) { return scaledSum(one, other, 1, 0); }

ExactNumber ExactNumber::midwayBetween(double one, double other) { return scaledSum(one, other, 5, -1); }

ExactNumber ExactNumber::scaledSum(double one, double other, int factor, std::int64_t power) {
  const ExactNumber a = of(one);
  const ExactNumber b = of(other);
  const auto low = [](const ExactNumber& n) { return n.exponent - static_cast<std::int64_t>(n.digits.size()); };
  const std::int64_t scale = std::min(a.isZero() ? low(b) : low(a), b.isZero() ? low(a) : low(b));
  const auto scaled = [&](const ExactNumber& n) {
    Whole whole(n.digits.rbegin(), n.digits.rend());
    if (!n.isZero()) whole.insert(whole.begin(), static_cast<std::size_t>(low(n) - scale), 0);
    return whole;
  };
  Whole sum = scaled(a);
  add(sum, scaled(b));
  multiply(sum, factor);
  ExactNumber number;
  number.exponent = static_cast<std::int64_t>(sum.size()) + scale + power;
  number.digits.assign(sum.rbegin(), sum.rend());
  number.trim();
  return number;
}

std::strong_ordering ExactNumber::compareMagnitude(const ExactNumber& other) const {
  if (isZero() || other.isZero()) return other.isZero() <=> isZero();
  if (exponent != other.exponent) return exponent <=> other.exponent;
  return std::lexicographical_compare_three_way(digits.begin(), digits.end(), other.digits.begin(), other.digits.end());
}

ExactNumber ExactNumber::roundedTo(std::int64_t places, Ties ties) const {
  const std::int64_t kept = exponent + places;
  if (kept >= static_cast<std::int64_t>(digits.size())) return *this;
  ExactNumber number;
  number.isNegative = isNegative;
  if (kept < 0) return number;
  number.exponent = exponent;
  const auto cut = digits.begin() + static_cast<std::ptrdiff_t>(kept);
  number.digits.assign(digits.begin(), cut);
  const bool isTie = *cut == 5 && cut + 1 == digits.end();
  const bool isOdd = kept > 0 && *(cut - 1) % 2 != 0;
  const bool goesUp = isTie ? ties == Ties::away || isOdd : *cut >= 5;
  if (goesUp) {
    number.digits.insert(number.digits.begin(), 0);
    ++number.exponent;
    for (std::size_t i = number.digits.size(); i-- > 0;) {
      if (++number.digits[i] < 10) break;
      number.digits[i] = 0;
    }
  }
  number.trim();
  return number;
}

int ExactNumber::digitAt(std::int64_t place) const {
  const std::int64_t index = exponent - 1 + place;
  return index < 0 || index >= static_cast<std::int64_t>(digits.size()) ? 0 : digits[static_cast<std::size_t>(index)];
}

void ExactNumber::trim() {
  while (!digits.empty() && digits.back() == 0) digits.pop_back();
  const auto first = std::ranges::find_if(digits, [](int digit) { return digit != 0; });
  exponent -= first - digits.begin();
  digits.erase(digits.begin(), first);
  if (digits.empty()) exponent = 0;
}

}  // namespace kelvora::fuzz
