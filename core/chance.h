#pragma once

#include <cmath>

#include "platform/backend.h"

namespace kelvora {

/// Draws a random whole number from 0 up to but excluding `limit`.
inline int drawBelow(double limit) { return static_cast<int>(std::floor(static_cast<double>(Rnd()) * limit)); }

namespace modMain {

/// Draws a boolean that is true with a probability of 0.4999.
inline bool coinFlip() { return drawBelow(10000) + 1 < 5000; }

}  // namespace modMain

}  // namespace kelvora
