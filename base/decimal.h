#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kelvora {

/// Conversions between binary and decimal numbers, correctly rounded, so that every standard library gives the same
/// digits and bits. The exact value decides, and ties go to the even digit.

/// The double nearest to "digits[.digits][e[sign]digits]"; nothing if it overflows, or rounds to 0 without being 0.
std::optional<double> parseDecimal(std::string_view text);
/// The same for a text that may be anything; nothing unless all of it is one number. Minus signs, infinities and NaN
/// are numbers, plus signs and blanks are not.
std::optional<double> parseWholeDecimal(std::string_view text);

/// Writes a finite number of at least 0 as "d.ddde+xx" with `decimals` digits after the point, without a terminator.
/// Returns the end of the text, or null if it doesn't fit.
char* writeScientific(char* first, std::size_t size, double value, int decimals);
/// The same as "ddd.ddd".
char* writeFixed(char* first, std::size_t size, double value, int decimals);

}  // namespace kelvora
