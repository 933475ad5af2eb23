#include "raster/surface.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace kelvora {

namespace {

void fillAll(std::vector<Pixel>& pixels, Pixel pixel) {
  // Black, as good as always: the C library's stores are twice as wide as those a compiler may count on.
  if (pixel == 0 && !pixels.empty()) {
    std::memset(pixels.data(), 0, pixels.size() * sizeof(Pixel));
  } else {
    std::fill(pixels.begin(), pixels.end(), pixel);
  }
}

}  // namespace

void Surface::resize(int width, int height) {
  width_ = std::max(0, width);
  height_ = std::max(0, height);
  pixels_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  Cls();
}

void Surface::setBackground(PicturePointer picture) {
  background_ = std::move(picture);
  Cls();
}

void Surface::Cls() {
  fillAll(pixels_, toPixel(BackColor));
  if (background_) {
    const int columns = std::min(width_, background_->width);
    const int rows = std::min(height_, background_->height);
    const Pixel* source = background_->pixels.data();
    Pixel* target = pixels_.data();
    for (int row = 0; row < rows; ++row, source += background_->width, target += width_) {
      std::copy_n(source, columns, target);
    }
  }
  CurrentX = 0;
  CurrentY = 0;
}

}  // namespace kelvora
