#pragma once

#include <memory>
#include <vector>

#include "raster/colour.h"

namespace kelvora {

/// A finished image, such as a sprite sheet, logo or button face. Rows are contiguous, top row first.
struct Picture {
  int width = 0;   ///< pixels
  int height = 0;  ///< pixels
  std::vector<Pixel> pixels;
};

/// Pictures are shared and immutable once loaded. Null means no picture.
using PicturePointer = std::shared_ptr<const Picture>;

}  // namespace kelvora
