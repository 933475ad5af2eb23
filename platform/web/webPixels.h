#pragma once

#include <span>
#include <vector>

#include "raster/picture.h"
#include "raster/surface.h"

namespace kelvora {

/// Shows a picture on a canvas of the page.
class WebPixels {
 public:
  /// Shows the areas that have changed since the last call, from top to bottom. At first and with another size, this is
  /// the whole picture.
  void show(int id, std::span<const Pixel> pixels, int width, int height, std::span<const PixelArea> changes);

 private:
  std::vector<Pixel> converted_;  ///< the picture in the page's order of bytes
};

}  // namespace kelvora
