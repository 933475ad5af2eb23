#pragma once

#include <cmath>

#include "platform/backend.h"

namespace kelvora {

/// One draw: a whole number from 0 up to but excluding `limit`.
inline int drawBelow(double limit) { return static_cast<int>(std::floor(static_cast<double>(Rnd()) * limit)); }

}  // namespace kelvora
