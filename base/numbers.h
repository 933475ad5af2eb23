#pragma once

#include <cstdint>

namespace kelvora {

/// The nearest whole number, ties to even, independent of the floating-point environment.
double roundToEven(double value);

/// Rounds to even. RuntimeFault "Overflow" if the result doesn't fit the type, or the value is NaN.
std::int16_t toInt16(double value);
std::int32_t toInt32(double value);
std::uint8_t toByte(double value);

/// Narrows to 32 bits. RuntimeFault "Overflow" if the value is out of range, infinite or NaN.
float toSingle(double value);

}  // namespace kelvora
