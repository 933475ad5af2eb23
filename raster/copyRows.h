#pragma once

#include <cstddef>

#include "raster/colour.h"

namespace kelvora {

/// A copy's source and target. A pitch is the number of pixels from one row to the next.
struct Rows {
  Pixel* target;
  std::ptrdiff_t targetPitch;
  const Pixel* source;
  std::ptrdiff_t sourcePitch;
  int width;
  int height;
};

/// Source and target must not overlap.
void copyRows(const Rows& rows);

}  // namespace kelvora
