#include "base/decimal.h"

#include <charconv>
#include <cmath>

#if !defined(__cpp_lib_to_chars)
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>
#endif

namespace kelvora {

#if defined(__cpp_lib_to_chars)

namespace {

char* write(char* first, std::size_t size, double value, std::chars_format format, int decimals) {
  const auto [end, error] = std::to_chars(first, first + size, value, format, decimals);
  return error == std::errc{} ? end : nullptr;
}

}  // namespace

std::optional<double> parseDecimal(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || std::isinf(value)) return std::nullopt;
  return value;
}

std::optional<double> parseWholeDecimal(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

char* writeScientific(char* first, std::size_t size, double value, int decimals) {
  return write(first, size, value, std::chars_format::scientific, decimals);
}

char* writeFixed(char* first, std::size_t size, double value, int decimals) {
  return write(first, size, value, std::chars_format::fixed, decimals);
}

#else

// The browser build's library lacks floating-point from_chars and to_chars. Its C functions round correctly and know no
// locale but "C".
namespace {

enum class Notation { Scientific, Fixed };

char* write(char* first, std::size_t size, Notation notation, double value, int decimals) {
  std::string text(size + 1, '\0');
  const int length =
      std::snprintf(text.data(), text.size(), notation == Notation::Fixed ? "%.*f" : "%.*e", decimals, value);
  if (length < 0 || static_cast<std::size_t>(length) > size) return nullptr;
  return first + text.copy(first, static_cast<std::size_t>(length));
}

}  // namespace

std::optional<double> parseDecimal(std::string_view text) {
  const double value = std::strtod(std::string(text).c_str(), nullptr);
  const bool isZero = text.substr(0, text.find_first_of("eE")).find_first_of("123456789") == std::string_view::npos;
  if (std::isinf(value) || (value == 0 && !isZero)) return std::nullopt;
  return value;
}

std::optional<double> parseWholeDecimal(std::string_view text) {
  // strtod also reads blanks, plus signs and hexadecimal digits. These letters are those of e, inf, infinity and nan.
  const bool isSuspect = text.find_first_not_of("0123456789.+-aefintyAEFINTY") != std::string_view::npos;
  if (text.empty() || text.front() == '+' || isSuspect) return std::nullopt;
  const std::string copy(text);
  char* end = nullptr;
  const double value = std::strtod(copy.c_str(), &end);
  if (end != copy.c_str() + copy.size()) return std::nullopt;
  const bool hasDigits = text.find_first_of("0123456789") != std::string_view::npos;
  return hasDigits ? parseDecimal(text) : std::optional(value);
}

char* writeScientific(char* first, std::size_t size, double value, int decimals) {
  return write(first, size, Notation::Scientific, value, decimals);
}

char* writeFixed(char* first, std::size_t size, double value, int decimals) {
  return write(first, size, Notation::Fixed, value, decimals);
}

#endif

}  // namespace kelvora
