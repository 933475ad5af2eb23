#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster/colour.h"

namespace kelvora {

/// The quotient rounded down. The divisor must be positive.
constexpr std::int64_t floorDivide(std::int64_t dividend, std::int64_t divisor) {
  const std::int64_t quotient = dividend / divisor;
  return quotient * divisor > dividend ? quotient - 1 : quotient;
}

/// The largest whole number whose square is at most `value`, which must be from 0 to 2^62.
inline std::int64_t wholeRoot(std::int64_t value) {
  auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(value)));
  while (root * root > value) --root;
  while ((root + 1) * (root + 1) <= value) ++root;
  return root;
}

/// Eight pixels: one wide register (AVX2), or two narrow ones.
inline constexpr int blockWidth = 8;
using Block [[gnu::vector_size(blockWidth * sizeof(Pixel))]] = Pixel;

/// Functions compiled for AVX2 inline this code with wide registers. Call them only if this is true.
#if defined(__x86_64__)
inline const bool hasWideRegisters = __builtin_cpu_supports("avx2") != 0;
#else
inline constexpr bool hasWideRegisters = false;
#endif

/// Fills spans with one colour. Most spans in the game have 2 to 60 pixels. Whole blocks, the last of which overlaps
/// the one before, are faster than a loop with a remainder.
class SpanFiller {
 public:
  explicit SpanFiller(Pixel pixel) {
    for (int i = 0; i < blockWidth; ++i) block_[i] = pixel;
  }

  /// Fills `count` pixels starting at `target`; none if `count` is 0 or less.
  [[gnu::always_inline]] void fill(Pixel* target, std::int64_t count) const {
    const std::int64_t last = count - blockWidth;
    if (last > 3 * blockWidth) {
      Pixel* const end = target + last;
      for (; target < end; target += blockWidth) store<blockWidth>(target);
      store<blockWidth>(end);
    } else if (last > blockWidth) {
      // Always four stores: a misprediction costs more than a store.
      store<blockWidth>(target);
      store<blockWidth>(target + (last < blockWidth ? last : blockWidth));
      store<blockWidth>(target + (last < 2 * blockWidth ? last : 2 * blockWidth));
      store<blockWidth>(target + last);
    } else if (last >= 0) {
      store<blockWidth>(target);
      store<blockWidth>(target + last);
    } else if (count >= blockWidth / 2) {
      store<blockWidth / 2>(target);
      store<blockWidth / 2>(target + count - blockWidth / 2);
    } else if (count > 0) {
      store<1>(target);
      store<1>(target + count / 2);
      store<1>(target + count - 1);
    }
  }

 private:
  template <std::size_t count>
  [[gnu::always_inline]] void store(Pixel* target) const {
    std::memcpy(target, &block_, count * sizeof(Pixel));
  }

  Block block_;
};

}  // namespace kelvora
