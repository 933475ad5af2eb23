#include "base/numbers.h"

#include <cmath>
#include <limits>

#include "base/fault.h"

namespace kelvora {
namespace {

template <class Integer>
Integer toInteger(double value) {
  const double rounded = roundToEven(value);
  // Written so that NaN fails, too.
  const bool fits = rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
                    rounded <= static_cast<double>(std::numeric_limits<Integer>::max());
  if (!fits) raiseOverflow();
  return static_cast<Integer>(rounded);
}

}  // namespace

double roundToEven(double value) {
  const double magnitude = std::fabs(value);
  double whole = std::floor(magnitude);
  const double rest = magnitude - whole;  // exact: both have the same exponent or whole is smaller
  if (rest > 0.5 || (rest == 0.5 && std::fmod(whole, 2.0) != 0.0)) whole += 1.0;
  return std::copysign(whole, value);
}

std::int16_t toInt16(double value) { return toInteger<std::int16_t>(value); }
std::int32_t toInt32(double value) { return toInteger<std::int32_t>(value); }
std::uint8_t toByte(double value) { return toInteger<std::uint8_t>(value); }

float toSingle(double value) {
  // Half a unit above the largest float. From here on the nearest float would be infinite.
  constexpr double firstTooLarge = 0x1.ffffffp127;
  if (!(std::fabs(value) < firstTooLarge)) raiseOverflow();
  return static_cast<float>(value);
}

}  // namespace kelvora
