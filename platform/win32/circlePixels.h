#pragma once

#include <cstdint>
#include <vector>

#include "raster/colour.h"

namespace kelvora {

/// A disc with a line around it. Lengths are in device pixels.
struct Circle {
  double radius;  ///< to the middle of the line
  double lineWidth;
  Colour fill;
  Colour line;
  bool isDotted;
};

/// The pixels of a square with the circle in its middle, row by row, with smooth edges. Channels are multiplied by the
/// coverage, which is in the topmost byte.
std::vector<std::uint32_t> circlePixels(const Circle& circle, int side);

}  // namespace kelvora
