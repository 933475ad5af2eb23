#pragma once

#include <span>
#include <vector>

#include "raster/picture.h"
#include "raster/surface.h"

namespace kelvora {

/// Shows a picture that doesn't change on a canvas of the page.
void showPicture(int id, const Picture& picture);

/// Shows a picture on a canvas of the page, which must be removed before this object.
class WebPixels {
 public:
  /// Shows the areas that have changed since the last call. At first and with another size, this is the whole picture.
  void show(int id, std::span<const Pixel> pixels, int width, int height, std::span<const PixelArea> changes);

 private:
  std::vector<Pixel> converted_;  ///< the picture in the page's order of bytes
};

}  // namespace kelvora
