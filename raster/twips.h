#pragma once

#include <cstdint>

#include "base/bitCast.h"

namespace kelvora {

/// Twips (canvas units) per pixel, everywhere.
inline constexpr int twipsPerPixel = 15;

/// Pixels beyond this one, on either side of 0, are outside any surface. Conversions clamp to it, so that later sums
/// can't overflow.
inline constexpr int maxPixel = 1'000'000;

/// The pixel of a twip coordinate or length: the nearest one, halves upward. All conversions from twips to pixels go
/// through here.
inline int toPixels(double twips) {
  constexpr double limit = maxPixel;
  // Rounds halves up despite the error of multiplying by a fraction. The single-precision number next to a half is
  // thirty times farther away.
  constexpr double hair = 0x1p-30;
  // At this size doubles are one apart. Adding it rounds to the nearest whole number, which then occupies the lowest
  // bits.
  constexpr double wholeNumbers = 0x1.8p52;
  double pixels = twips * (1.0 / twipsPerPixel) + hair;
  pixels = pixels > -limit ? pixels : -limit;
  pixels = pixels < limit ? pixels : limit;
  return static_cast<int>(static_cast<std::uint32_t>(bitCast<std::uint64_t>(pixels + wholeNumbers)));
}

}  // namespace kelvora
