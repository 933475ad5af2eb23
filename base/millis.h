#pragma once

#include <cstdint>

namespace kelvora {

/// Milliseconds of a monotonic clock.
using Millis = std::int64_t;

}  // namespace kelvora
