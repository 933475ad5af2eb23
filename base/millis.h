#pragma once

#include <cstdint>

namespace kelvora {

/// Milliseconds of a clock that never goes back.
using Millis = std::int64_t;

}  // namespace kelvora
