#include "tests/server/net/heapBytes.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> held{0};

}  // namespace

namespace kelvora::server {

std::size_t heapBytes() { return held; }

}  // namespace kelvora::server

// The library's other forms of these call them.

void* operator new(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  held += ::malloc_usable_size(memory);
  return memory;
}

void operator delete(void* memory) noexcept {
  if (memory == nullptr) return;
  held -= ::malloc_usable_size(memory);
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
