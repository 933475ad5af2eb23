#include "base/randomGenerator.h"

#include "base/bitCast.h"

namespace kelvora {
namespace {

constexpr std::uint32_t stateMask = 0xFFFFFF;
// The modulus is a power of two, the multiplier 1 more than a multiple of 4 and the increment odd, so the period covers
// all 2^24 states. The multiplier does well in the spectral test in two and three dimensions.
constexpr std::uint32_t multiplier = 16724085;
constexpr std::uint32_t increment = 0x9E3779;

// Folds 32 bits into 24: sign and exponent overlap the lowest bits, so none is lost.
std::uint32_t foldedBits(float value) {
  const auto bits = bitCast<std::uint32_t>(value);
  return (bits ^ bits >> 24) & stateMask;
}

// Exact: at most 24 significant bits divided by a power of two.
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
