#include "base/randomGenerator.h"

#include <bit>

namespace kelvora {
namespace {

constexpr std::uint32_t stateMask = 0xFFFFFF;
// Modulus a power of two, multiplier 1 above a multiple of 4, increment odd: all 2^24 states come by once a period. The
// multiplier is one of those whose pairs and triples lie on the closest planes.
constexpr std::uint32_t multiplier = 16724085;
constexpr std::uint32_t increment = 0x9E3779;

// 32 bits to 24: the sign and the exponent lie over the lowest bits, so that none is lost.
std::uint32_t foldedBits(float value) {
  const auto bits = std::bit_cast<std::uint32_t>(value);
  return (bits ^ bits >> 24) & stateMask;
}

// At most 24 significant bits and a power of two: the division is exact.
float asFraction(std::uint32_t state) { return static_cast<float>(state) / 16777216.0F; }

}  // namespace

void RandomGenerator::randomize(float seed) { state_ = foldedBits(seed); }

float RandomGenerator::next() {
  state_ = (state_ * multiplier + increment) & stateMask;
  return asFraction(state_);
}

float RandomGenerator::next(float argument) {
  if (argument == 0.0F) return asFraction(state_);
  if (argument < 0.0F) randomize(argument);
  return next();
}

}  // namespace kelvora
