#pragma once

#include <cstddef>

// g++ tells of a sanitizer by a macro, clang by a feature.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KELVORA_SANITIZED_HEAP
#endif
#elif defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KELVORA_SANITIZED_HEAP
#endif

#ifdef KELVORA_SANITIZED_HEAP
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // g++ comes without its header
#else
#include <malloc.h>
#endif

namespace kelvora {

/// Bytes that the process has allocated and not freed. Unlike resident memory, it doesn't depend on what the allocator
/// keeps for later.
inline std::size_t allocatedBytes() {
#ifdef KELVORA_SANITIZED_HEAP
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 held = ::mallinfo2();
  return held.uordblks + held.hblkhd;
#endif
}

}  // namespace kelvora
