#pragma once

#include <cmath>

namespace kelvora {

/// Twips (canvas units) to a pixel, everywhere.
inline constexpr int twipsPerPixel = 15;

/// The pixel that a twip coordinate or length falls on: the nearest one, halves upward. The only place where twips turn
/// into pixels. Values far outside any surface are held at a million pixels, so that later sums cannot overflow.
inline int toPixels(double twips) {
  constexpr double limit = 1'000'000.0;
  const double pixels = std::floor(twips / twipsPerPixel + 0.5);
  if (!(pixels > -limit)) return static_cast<int>(-limit);
  if (pixels > limit) return static_cast<int>(limit);
  return static_cast<int>(pixels);
}

}  // namespace kelvora
