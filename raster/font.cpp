#include "raster/font.h"

#include <cmath>

namespace kelvora {

int fontPixels(float points) {
  const float pixels = std::round(points * 96 / 72);
  return pixels >= 1 && pixels <= 200 ? static_cast<int>(pixels) : 12;
}

}  // namespace kelvora
