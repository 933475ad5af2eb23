#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster/colour.h"

namespace kelvora {

/// The quotient rounded down, for a positive divisor.
constexpr std::int64_t floorDivide(std::int64_t dividend, std::int64_t divisor) {
  const std::int64_t quotient = dividend / divisor;
  return quotient * divisor > dividend ? quotient - 1 : quotient;
}

/// The largest whole number whose square is at most `value`, for 0 up to 2^62.
inline std::int64_t wholeRoot(std::int64_t value) {
  auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(value)));
  while (root * root > value) --root;
  while ((root + 1) * (root + 1) <= value) ++root;
  return root;
}

namespace detail {

/// Stores `count` equal pixels, four at a time as far as the compiler knows the machine.
template <std::size_t count>
inline void storeBlock(Pixel* target, const std::array<Pixel, 16>& block) {
  std::memcpy(target, block.data(), count * sizeof(Pixel));
}

}  // namespace detail

/// One colour, ready to be laid down in spans. The spans of the game are short, 2 to 60 pixels as a rule: whole blocks,
/// of which the last overlaps the one before, are faster than a loop with a remainder.
class SpanFiller {
 public:
  explicit SpanFiller(Pixel pixel) { block_.fill(pixel); }

  /// Fills `count` pixels from `target` on; `count` of 0 or less fills none.
  void fill(Pixel* target, std::ptrdiff_t count) const {
    using detail::storeBlock;
    if (count > 32) {
      Pixel* const last = target + count - 16;
      for (; target < last; target += 16) storeBlock<16>(target, block_);
      storeBlock<16>(last, block_);
    } else if (count >= 16) {
      storeBlock<16>(target, block_);
      storeBlock<16>(target + count - 16, block_);
    } else if (count >= 4) {
      // Four stores whatever the count: a wrong guess of the processor costs more than a store.
      const std::ptrdiff_t last = count - 4;
      storeBlock<4>(target, block_);
      storeBlock<4>(target + (last < 4 ? last : 4), block_);
      storeBlock<4>(target + (last < 8 ? last : 8), block_);
      storeBlock<4>(target + last, block_);
    } else if (count > 0) {
      target[0] = block_[0];
      target[count / 2] = block_[0];
      target[count - 1] = block_[0];
    }
  }

 private:
  std::array<Pixel, 16> block_{};
};

}  // namespace kelvora
