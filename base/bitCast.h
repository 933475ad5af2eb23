#pragma once

#include <bit>

namespace kelvora {

/// The bits of `from` as a value of another type of the same size. Stands in for `std::bit_cast`, which the browser
/// build's library lacks.
template <class To, class From>
constexpr To bitCast(const From& from) {
#if defined(__cpp_lib_bit_cast)
  return std::bit_cast<To>(from);
#else
  static_assert(sizeof(To) == sizeof(From));
  return __builtin_bit_cast(To, from);
#endif
}

}  // namespace kelvora
