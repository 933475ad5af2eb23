#pragma once

#include <bit>
#include <cstdint>

namespace kelvora {

/// Twips (canvas units) to a pixel, everywhere.
inline constexpr int twipsPerPixel = 15;

/// Pixels beyond this one, on either side of 0, lie outside any surface. Twips are held there, so that later sums
/// cannot overflow.
inline constexpr int farthestPixel = 1'000'000;

/// The pixel that a twip coordinate or length falls on: the nearest one, halves upward. The only place where twips turn
/// into pixels.
inline int toPixels(double twips) {
  constexpr double limit = farthestPixel;
  // A hair that lifts the halves over the middle, and what the product by a fraction has lost of them; the next single
  // precision number beside a half is thirty times farther off.
  constexpr double hair = 0x1p-30;
  // Where doubles lie one apart: adding it rounds to the nearest whole number, which stands in the lowest bits then.
  constexpr double wholeNumbers = 0x1.8p52;
  double pixels = twips * (1.0 / twipsPerPixel) + hair;
  pixels = pixels > -limit ? pixels : -limit;
  pixels = pixels < limit ? pixels : limit;
  return static_cast<int>(static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(pixels + wholeNumbers)));
}

}  // namespace kelvora
