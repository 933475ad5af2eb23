#pragma once

#include <span>
#include <vector>

#include "raster/surface.h"

namespace kelvora {

/// Enlarges a picture, part by part. A pixel of the screen shows the mean of what it covers of the picture, so that
/// edges stay sharp and parts meet exactly. Both sizes must be positive, and the picture no larger than it is shown.
class PictureScaler {
 public:
  PictureScaler(int width, int height, int shownWidth, int shownHeight);

  /// The shown pixels that depend on this area of the picture.
  PixelArea reach(const PixelArea& area) const;
  /// Writes the shown pixels of `part`, row by row.
  void scale(std::span<const Pixel> pixels, const PixelArea& part, std::span<Pixel> shown) const;

 private:
  /// A shown column or row mixes two of the picture: `first`, and the next one with this weight, 0 to 256.
  struct Mixture {
    int first;
    Pixel nextWeight;
  };

  static std::vector<Mixture> mixtures(int length, int shownLength);
  static Pixel mixed(Pixel first, Pixel next, Pixel nextWeight);

  int width_;
  int height_;
  std::vector<Mixture> columns_;
  std::vector<Mixture> rows_;
};

}  // namespace kelvora
