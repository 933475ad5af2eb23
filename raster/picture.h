#pragma once

#include <memory>
#include <vector>

#include "raster/colour.h"

namespace kelvora {

/// A finished image: sprite sheet, logo, button face. Rows lie one behind the other, top row first.
struct Picture {
  int width = 0;   ///< pixels
  int height = 0;  ///< pixels
  std::vector<Pixel> pixels;
};

/// Pictures are shared and never changed once loaded; null is "no picture".
using PicturePointer = std::shared_ptr<const Picture>;

}  // namespace kelvora
