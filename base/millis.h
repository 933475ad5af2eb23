#pragma once

#include <cstdint>

namespace kelvora {

/// Milliseconds of a monotonic clock, which never wrap around.
using Millis = std::int64_t;

/// The system's monotonic clock.
Millis steadyNow();

}  // namespace kelvora
