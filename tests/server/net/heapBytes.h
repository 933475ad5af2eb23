#pragma once

#include <cstddef>

namespace kelvora::server {

/// The bytes that this process holds on the heap, as the allocator counts them.
std::size_t heapBytes();

}  // namespace kelvora::server
