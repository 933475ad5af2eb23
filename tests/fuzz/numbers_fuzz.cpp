// Numbers to text and back, compared with digit-by-digit arithmetic.

#include <bit>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "base/fault.h"
#include "base/numbers.h"
#include "base/text.h"
#include "tests/fuzz/exactNumber.h"
#include "tests/fuzz/input.h"

namespace kelvora {
namespace {

using fuzz::ExactNumber;
using fuzz::Input;
using fuzz::require;
using Ties = ExactNumber::Ties;

/// The result of an action; nothing if it ends in a fault.
template <class Action>
auto attempt(const Action& action) -> std::optional<decltype(action())> {
  try {
    return action();
  } catch (const RuntimeFault&) {
    return std::nullopt;
  }
}

std::string digitsText(const ExactNumber& number, std::int64_t from, std::int64_t to) {
  std::string text;
  for (std::int64_t place = from; place <= to; ++place) text += static_cast<char>('0' + number.digitAt(place));
  return text;
}

/// Decimal text with at most this many digits, as on the wire.
std::string expectedText(double value, int significant) {
  const ExactNumber number = ExactNumber::of(value).withDigits(significant);
  if (number.isZero()) return "0";
  const auto size = static_cast<std::int64_t>(number.digits.size());
  const std::int64_t first = number.exponent - 1;  // the power of ten of the first digit
  std::string text = number.isNegative ? "-" : "";
  if (first >= significant || first < -significant) {
    text += digitsText(number, -first, -first);
    if (size > 1) text += "." + digitsText(number, 1 - first, size - 1 - first);
    const std::string power = std::to_string(std::abs(first));
    return text + "E" + (first < 0 ? "-" : "+") + (power.size() < 2 ? "0" : "") + power;
  }
  if (first >= 0) text += digitsText(number, -first, 0);
  if (size > number.exponent) text += "." + digitsText(number, 1, size - number.exponent);
  return text;
}

std::string expectedThousands(double value) {
  const ExactNumber number = ExactNumber::of(value).roundedTo(3, Ties::away);
  std::string whole;
  for (std::int64_t place = number.exponent - 1; place >= 0; --place) {
    whole += static_cast<char>('0' + number.digitAt(-place));
    if (place > 0 && place % 3 == 0) whole += ',';
  }
  return (number.isNegative && !number.isZero() ? "-" : "") + whole + "." + digitsText(number, 1, 3);
}

template <class Integer>
void checkInteger(double value, std::optional<Integer> got) {
  if (!std::isfinite(value)) return require(!got);
  const ExactNumber rounded = ExactNumber::of(value).roundedTo(0, Ties::toEven);
  const double low = static_cast<double>(std::numeric_limits<Integer>::min());
  const double high = static_cast<double>(std::numeric_limits<Integer>::max());
  const auto above = [&](double end) { return rounded.compareMagnitude(ExactNumber::of(end)) > 0; };
  const bool fits = rounded.isZero() || (rounded.isNegative ? !above(low) : !above(high));
  require(got.has_value() == fits);
  if (!got) return;
  const ExactNumber result = ExactNumber::of(static_cast<double>(*got));
  require(result.compareMagnitude(rounded) == 0 && (result.isZero() || result.isNegative == rounded.isNegative));
}

void checkValue(double value) {
  checkInteger<std::int16_t>(value, attempt([&] { return toInt16(value); }));
  checkInteger<std::int32_t>(value, attempt([&] { return toInt32(value); }));
  checkInteger<std::uint8_t>(value, attempt([&] { return toByte(value); }));
  const auto text = attempt([&] { return numberText(value); });
  const auto thousands = attempt([&] { return formatThousands(value); });
  const auto single = attempt([&] { return toSingle(value); });
  require(text.has_value() == std::isfinite(value) && thousands.has_value() == std::isfinite(value));
  if (!std::isfinite(value)) return require(!single);
  require(*text == expectedText(value, 15));
  require(*thousands == expectedThousands(value));
  if (single) require(std::isfinite(*single));
}

/// A single written with 9 digits would be read back unchanged. Ours have 7 digits, so the value read back only has the
/// same text.
void checkSingle(float value) {
  const auto text = attempt([&] { return numberText(value); });
  require(text.has_value() == std::isfinite(value));
  if (!text) return;
  require(*text == expectedText(static_cast<double>(value), 7));
  // The texts of the largest singles round up beyond their range.
  const auto again = attempt([&] { return toSingle(readNumber(*text)); });
  require(again ? numberText(*again) == *text : std::fabs(value) > 3.402823e38F);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// The value of a text up to the first character that doesn't fit.
struct Reading {
  std::string mantissa;  // digits and a point
  std::int64_t power = 0;
  bool isNegative = false;
  bool isWhole = false;  // only blanks are left
};

std::optional<Reading> readSlowly(std::string_view text) {
  constexpr std::int64_t farOut = 1'000'000;
  Reading reading;
  std::size_t at = 0;
  const auto next = [&] { return at < text.size() ? text[at] : '\0'; };
  while (next() == ' ') ++at;
  if (next() == '-' || next() == '+') reading.isNegative = text[at++] == '-';
  bool hasDigit = false;
  bool hasPoint = false;
  for (; isDigit(next()) || (next() == '.' && !hasPoint); ++at) {
    hasPoint = hasPoint || next() == '.';
    hasDigit = hasDigit || isDigit(next());
    reading.mantissa += next();
  }
  if (!hasDigit) return std::nullopt;
  if (next() == 'e' || next() == 'E') {
    std::size_t after = at + 1;
    const bool isSigned = after < text.size() && (text[after] == '-' || text[after] == '+');
    if (isSigned) ++after;
    std::size_t end = after;
    for (; end < text.size() && isDigit(text[end]); ++end) {
      reading.power = std::min(reading.power * 10 + (text[end] - '0'), farOut);
    }
    if (end > after) {
      if (isSigned && text[at + 1] == '-') reading.power = -reading.power;
      at = end;
    } else {
      reading.power = 0;
    }
  }
  while (next() == ' ') ++at;
  reading.isWhole = at == text.size();
  return reading;
}

void checkText(std::string_view text) {
  if (text.size() > 900) return;  // the twin is slow
  const auto got = attempt([&] { return readNumber(text); });
  const auto strict = attempt([&] { return strictNumber(text); });
  const auto reading = readSlowly(text);
  require(!strict || (got && std::bit_cast<std::uint64_t>(*strict) == std::bit_cast<std::uint64_t>(*got)));
  if (!reading) {
    require(got && *got == 0 && !strict);
    return;
  }
  require(strict.has_value() == (got.has_value() && reading->isWhole));
  const ExactNumber exact = ExactNumber::ofDecimal(reading->mantissa, reading->power);
  // From half a unit above the largest double on, it overflows.
  constexpr double largest = std::numeric_limits<double>::max();
  const bool isTooLarge = exact.compareMagnitude(ExactNumber::sumOf(largest, std::ldexp(1.0, 970))) >= 0;
  require(got.has_value() != isTooLarge);
  if (!got) return;
  const double magnitude = std::fabs(*got);
  require(std::isfinite(magnitude));
  require(magnitude == 0 || std::signbit(*got) == reading->isNegative);
  if (exact.exponent < -330) return require(magnitude == 0);
  // The nearest double: at most half-way to its neighbours, and exactly half-way only from an even double.
  const bool isEven = (std::bit_cast<std::uint64_t>(magnitude) & 1) == 0;
  if (magnitude > 0) {
    const auto below = exact.compareMagnitude(ExactNumber::midwayBetween(std::nextafter(magnitude, 0), magnitude));
    require(below > 0 || (below == 0 && isEven));
  }
  if (magnitude < largest) {
    const auto above =
        exact.compareMagnitude(ExactNumber::midwayBetween(magnitude, std::nextafter(magnitude, largest)));
    require(above < 0 || (above == 0 && isEven));
  }
}

}  // namespace
}  // namespace kelvora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kelvora;
  Input input(data, size);
  switch (input.byte() % 4) {
    case 0:
      checkValue(std::bit_cast<double>(input.number(8)));
      break;
    case 1:
      checkSingle(std::bit_cast<float>(static_cast<std::uint32_t>(input.number(4))));
      break;
    case 2:  // sixteenths and thousandths, many of them ties
      checkValue(static_cast<double>(static_cast<std::int32_t>(input.number(4))) / (input.byte() % 2 == 0 ? 16 : 1000));
      break;
    default:
      checkText(input.rest());
  }
  return 0;
}
