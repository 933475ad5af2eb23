#pragma once

#include <cstdint>

namespace kelvora {

/// Nearest whole number, ties to even, independent of the floating-point environment.
double roundToEven(double value);

/// Rounded to even and checked against the range of the type; outside it (and for a value that is no number)
/// RuntimeFault "Overflow".
std::int16_t toInt16(double value);
std::int32_t toInt32(double value);
std::uint8_t toByte(double value);

/// Narrowed to 32 bits; a value beyond the range, infinite or no number is RuntimeFault "Overflow".
float toSingle(double value);

}  // namespace kelvora
