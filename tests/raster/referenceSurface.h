#pragma once

#include <string>
#include <vector>

#include "raster/surface.h"

namespace kelvora {

inline float twips(int pixels) { return static_cast<float>(pixels * twipsPerPixel); }

inline std::vector<Pixel> pixelsOf(const Surface& surface) {
  return {surface.pixels().begin(), surface.pixels().end()};
}

/// The slow twin of Surface: tests every pixel of the image against the definition of the drawing operation.
/// Coordinates are whole pixels.
class ReferenceSurface {
 public:
  ReferenceSurface(int width, int height, Pixel background);

  void line(int x1, int y1, int x2, int y2, int width, Pixel pixel);
  void circle(int x, int y, int radius, Pixel outline, Pixel inside);
  void copy(const Picture& source, int x, int y, int w, int h, int sx, int sy, RasterOperation operation);

  const std::vector<Pixel>& pixels() const { return pixels_; }
  int width() const { return width_; }
  int height() const { return height_; }

 private:
  Pixel& at(int x, int y);

  int width_;
  int height_;
  std::vector<Pixel> pixels_;
};

/// The image as text, one line per row: '.' where a pixel is 0, '#' elsewhere.
std::string drawing(const Surface& surface);

/// Describes the first difference between the two images; empty if there is none.
std::string difference(const Surface& surface, const ReferenceSurface& reference);

}  // namespace kelvora
