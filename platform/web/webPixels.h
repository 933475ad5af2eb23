#pragma once

#include <span>
#include <vector>

#include "raster/picture.h"

namespace kelvora {

/// Shows a picture on a canvas of the page, only the rows that have changed since the last time.
class WebPixels {
 public:
  void show(int id, std::span<const Pixel> pixels, int width, int height);

 private:
  std::vector<Pixel> shown_;
  std::vector<Pixel> converted_;  ///< in the page's order of bytes
  int width_ = -1;
  int height_ = -1;
};

}  // namespace kelvora
