#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <system_error>

#include "base/decimal.h"
#include "base/fault.h"

namespace kelvora {
namespace {

constexpr bool isDigit(char character) { return character >= '0' && character <= '9'; }

std::size_t skipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && isDigit(text[at])) ++at;
  return at;
}

// A number at the start of a text: its value and its length in characters. Length 0 means no number.
struct NumberHead {
  double value = 0;
  std::size_t length = 0;
};

// The power of ten of the first nonzero digit, clamped far outside a double's range. `exponent` is empty or digits with
// an optional sign.
std::int64_t decimalMagnitude(std::string_view mantissa, std::string_view exponent) {
  constexpr std::int64_t farOut = 1'000'000'000'000'000;
  std::int64_t power = 0;
  if (!exponent.empty() && exponent.front() == '+') exponent.remove_prefix(1);
  const auto [unused, error] = std::from_chars(exponent.data(), exponent.data() + exponent.size(), power);
  if (error == std::errc::result_out_of_range) power = exponent.front() == '-' ? -farOut : farOut;
  const auto first = static_cast<std::int64_t>(mantissa.find_first_of("123456789"));
  const auto point = static_cast<std::int64_t>(std::min(mantissa.find('.'), mantissa.size()));
  return std::clamp(power, -farOut, farOut) + (first < point ? point - first - 1 : point - first);
}

NumberHead readHead(std::string_view text) {
  const bool isSigned = !text.empty() && (text.front() == '-' || text.front() == '+');
  const std::size_t start = isSigned ? 1 : 0;
  const std::size_t wholeEnd = skipDigits(text, start);
  std::size_t end = wholeEnd;
  std::size_t digits = wholeEnd - start;
  if (wholeEnd < text.size() && text[wholeEnd] == '.') {
    end = skipDigits(text, wholeEnd + 1);
    digits += end - (wholeEnd + 1);
  }
  if (digits == 0) return {};
  const std::string_view mantissa = text.substr(start, end - start);
  std::string_view exponent;
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    std::size_t exponentStart = end + 1;
    if (exponentStart < text.size() && (text[exponentStart] == '-' || text[exponentStart] == '+')) ++exponentStart;
    const std::size_t exponentEnd = skipDigits(text, exponentStart);
    if (exponentEnd > exponentStart) {
      exponent = text.substr(end + 1, exponentEnd - (end + 1));
      end = exponentEnd;
    }
  }
  NumberHead head;
  head.length = end;
  if (mantissa.find_first_of("123456789") != std::string_view::npos) {
    const std::optional<double> value = parseDecimal(text.substr(start, end - start));
    if (!value && decimalMagnitude(mantissa, exponent) > 0) raiseOverflow();
    head.value = value.value_or(0);
  }
  if (isSigned && text.front() == '-') head.value = -head.value;
  return head;
}

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

constexpr unsigned char lowerByte(unsigned char character) {
  const bool isAscii = character >= 'A' && character <= 'Z';
  const bool isLatin = character >= 0xC0 && character <= 0xDE && character != 0xD7;  // 0xD7 is the multiplication sign
  if (isAscii || isLatin) return static_cast<unsigned char>(character + 0x20);
  const bool isCaron = character == 0x8A || character == 0x8C || character == 0x8E;
  if (isCaron) return static_cast<unsigned char>(character + 0x10);
  return character == 0x9F ? static_cast<unsigned char>(0xFF) : character;
}

template <class Real>
std::string decimalText(Real value, int significantDigits) {
  if (!std::isfinite(value)) raiseOverflow();
  if (value == Real{0}) return "0";
  // "d.dddddde+xx", rounded from the exact value.
  std::array<char, 32> buffer{};
  const char* const end = writeScientific(buffer.data(), buffer.size(), std::fabs(value), significantDigits - 1);
  const std::string_view scientific(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  const std::size_t mark = scientific.find('e');
  int exponent = 0;
  const std::size_t exponentStart = mark + (scientific[mark + 1] == '+' ? 2 : 1);
  std::from_chars(scientific.data() + exponentStart, end, exponent);

  std::string digits(1, scientific.front());
  digits += scientific.substr(2, mark - 2);
  digits.erase(digits.find_last_not_of('0') + 1);
  std::string text = value < Real{0} ? "-" : "";
  if (exponent >= significantDigits || exponent < -significantDigits) {
    text += digits.front();
    if (digits.size() > 1) text.append(".").append(digits, 1);
    return text.append("E").append(scientific.substr(mark + 1));
  }
  if (exponent < 0) return text.append(".").append(static_cast<std::size_t>(-exponent - 1), '0').append(digits);
  const auto whole = static_cast<std::size_t>(exponent + 1);
  if (digits.size() <= whole) return text.append(digits).append(whole - digits.size(), '0');
  return text.append(digits, 0, whole).append(".").append(digits, whole);
}

}  // namespace

std::string trimBlanks(std::string_view text) { return std::string(withoutBlanks(text)); }

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& character : lower) character = static_cast<char>(lowerByte(static_cast<unsigned char>(character)));
  return lower;
}

std::string numberText(float value) { return decimalText(value, 7); }
std::string numberText(double value) { return decimalText(value, 15); }
std::string numberText(std::int32_t value) { return std::to_string(value); }

double readNumber(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? 0.0 : readHead(text.substr(first)).value;
}

double strictNumber(std::string_view text) {
  const std::string_view number = withoutBlanks(text);
  const NumberHead head = readHead(number);
  if (head.length == 0 || head.length != number.size()) raiseTypeMismatch();
  return head.value;
}

bool strictBoolean(std::string_view text) {
  const std::string word = lowerCase(withoutBlanks(text));
  if (word == "true") return true;
  if (word == "false") return false;
  return strictNumber(text) != 0.0;
}

std::string booleanText(bool value) { return value ? "True" : "False"; }

std::string formatThreeDigits(std::int32_t value) {
  const std::string digits = std::to_string(std::abs(static_cast<std::int64_t>(value)));
  std::string text = value < 0 ? "-" : "";
  if (digits.size() < 3) text.append(3 - digits.size(), '0');
  return text + digits;
}

std::string formatThousands(double value) {
  if (!std::isfinite(value)) raiseOverflow();
  constexpr int decimals = 3;
  const double magnitude = std::fabs(value);
  // Only odd sixteenths lie exactly half-way between two thousandths, and they round away from zero. Their fourth and
  // last decimal is 5 and the third is 2 or 7, so adding one never carries.
  const bool isHalfway = std::fmod(magnitude * 16.0, 2.0) == 1.0;
  std::array<char, 400> buffer{};
  char* end = writeFixed(buffer.data(), buffer.size(), magnitude, decimals + (isHalfway ? 1 : 0));
  if (isHalfway) ++*(--end - 1);
  const std::string_view plain(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
  const std::size_t wholeDigits = plain.size() - decimals - 1;
  std::string text;
  if (plain.find_first_of("123456789") != std::string_view::npos && value < 0.0) text = "-";
  if (plain.front() != '0') {
    for (std::size_t i = 0; i < wholeDigits; ++i) {
      if (i > 0 && (wholeDigits - i) % 3 == 0) text += ',';
      text += plain[i];
    }
  }
  return text.append(plain.substr(wholeDigits));
}

}  // namespace kelvora
