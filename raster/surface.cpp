#include "raster/surface.h"

#include <algorithm>
#include <utility>

namespace kelvora {

void Surface::resize(int width, int height) {
  width_ = std::max(0, width);
  height_ = std::max(0, height);
  const auto rows = static_cast<std::size_t>(height_);
  pixels_.resize(static_cast<std::size_t>(width_) * rows);
  leftEdge_.resize(rows);
  rightEdge_.resize(rows);
  Cls();
}

void Surface::setBackground(PicturePointer picture) {
  background_ = std::move(picture);
  Cls();
}

void Surface::Cls() {
  std::fill(pixels_.begin(), pixels_.end(), toPixel(BackColor));
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
