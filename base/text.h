#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kelvora {

/// Inside the program, text is single bytes in code page 1252. The backend converts at its boundary.

/// Removes blanks (byte 32) at both ends.
std::string trimBlanks(std::string_view text);

/// Lowercases ASCII letters and the accented capitals of code page 1252.
std::string lowerCase(std::string_view text);

/// Decimal text with at most 7 significant digits and a decimal point. Fractions have no zero before the point (".5").
/// Exponents are used from ten million on ("1.234568E+07") and below a ten millionth ("1.5E-08"). RuntimeFault
/// "Overflow" if the value is infinite or NaN.
std::string numberText(float value);
/// The same with at most 15 digits. Exponents are used from 1E+15 on and below the 15th decimal.
std::string numberText(double value);
std::string numberText(std::int32_t value);

/// Reads a number at the start of a text: leading blanks, sign, digits, point and digits, exponent. Stops at the first
/// character that doesn't fit; 0 if there is no number. RuntimeFault "Overflow" if it exceeds the range of a double.
double readNumber(std::string_view text);

/// Strict conversions for stored settings. Apart from blanks at its ends, the whole text must be one number, or one
/// boolean: "True" or "False" in any case, or a number, where 0 is false. Otherwise RuntimeFault "Type mismatch", or
/// "Overflow" if out of range.
double strictNumber(std::string_view text);
bool strictBoolean(std::string_view text);

/// "True" or "False", as stored in settings.
std::string booleanText(bool value);

/// The number with at least three digits: 7 is "007".
std::string formatThreeDigits(std::int32_t value);

/// "###,###,###.000": three decimals, halves rounded away from zero, commas between thousands, no zero before the
/// point, and no sign if only zeros remain. RuntimeFault "Overflow" if the value is infinite or NaN.
std::string formatThousands(double value);

}  // namespace kelvora
