#pragma once

#include <cstddef>

#ifdef KELVORA_SANITIZED
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // g++ comes without its header
#else
#include <malloc.h>
#endif

namespace kelvora {

/// Bytes that the process has allocated and not freed. Unlike resident memory, it doesn't depend on what the allocator
/// keeps for later.
inline std::size_t allocatedBytes() {
#ifdef KELVORA_SANITIZED
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 held = ::mallinfo2();
  return held.uordblks + held.hblkhd;
#endif
}

}  // namespace kelvora
