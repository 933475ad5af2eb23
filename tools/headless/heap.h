#pragma once

#include <malloc.h>

#include <cstdint>

namespace kelvora {

/// The bytes that the program has allocated and not freed.
inline std::int64_t usedHeapBytes() {
#if defined(_WIN32)
  std::int64_t bytes = 0;
  _HEAPINFO block{};
  while (::_heapwalk(&block) == _HEAPOK) {
    if (block._useflag == _USEDENTRY) bytes += static_cast<std::int64_t>(block._size);
  }
  return bytes;
#else
#if defined(__EMSCRIPTEN__)
  const auto heap = ::mallinfo();
#else
  const auto heap = ::mallinfo2();
#endif
  return static_cast<std::int64_t>(heap.uordblks) + static_cast<std::int64_t>(heap.hblkhd);
#endif
}

}  // namespace kelvora
