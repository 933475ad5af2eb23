#pragma once

#include "raster/picture.h"

namespace kelvora {

inline constexpr int maxPenWidth = 64;

/// A line's image and colour.
struct LineTarget {
  Pixel* pixels;
  int width;
  int height;
  Pixel pixel;
};

struct LineEnd {
  int x;
  int y;
};

/// Draws a line of width 2 to `maxPenWidth`, as `Surface::Line` specifies. Its bounding box has to meet the image.
void drawThickLine(const LineTarget& target, LineEnd from, LineEnd to, int width);

}  // namespace kelvora
