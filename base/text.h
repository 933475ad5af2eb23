#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kelvora {

/// Text is single bytes in code page 1252 everywhere inside the program; the backend converts at its edge.

/// Without the blanks (byte 32) at both ends.
std::string trimBlanks(std::string_view text);

/// ASCII letters and the accented capitals of code page 1252 in lower case.
std::string lowerCase(std::string_view text);

/// Decimal text without blanks: at most 7 significant digits, a point as separator, no zero before the point of a
/// fraction (".5"), "1.234568E+07" from ten million on and "1.5E-08" below a ten millionth. A value that is infinite or
/// no number is RuntimeFault "Overflow".
std::string numberText(float value);
/// The same with at most 15 digits, exponents from 1E+15 on and below the 15th decimal.
std::string numberText(double value);
std::string numberText(std::int32_t value);

/// Number text read from the left: leading blanks skipped, sign, digits, point and digits, exponent, up to the first
/// character that does not fit; no number reads as 0. A number beyond the range of a double is RuntimeFault "Overflow".
double readNumber(std::string_view text);

/// The strict conversions of stored settings: the whole text, blanks at its ends aside, must be one number, or one
/// boolean ("True", "False" in any case, or a number, where 0 is false). Otherwise RuntimeFault "Type mismatch"; out of
/// range, "Overflow".
double strictNumber(std::string_view text);
bool strictBoolean(std::string_view text);

/// "True" or "False", as settings are stored.
std::string booleanText(bool value);

/// The whole number with at least three digits ("000"): 7 is "007".
std::string formatThreeDigits(std::int32_t value);

/// "###,###,###.000": three decimals, halves away from zero, thousands grouped by commas, no zero before the point; no
/// sign where only zeros are left. A value that is infinite or no number is RuntimeFault "Overflow".
std::string formatThousands(double value);

}  // namespace kelvora
