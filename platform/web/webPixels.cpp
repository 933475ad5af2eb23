#include "platform/web/webPixels.h"

#include <algorithm>
#include <cstring>

#include "platform/web/page.h"

namespace kelvora {

namespace {

constexpr int bandHeight = 16;  // rows that are compared and shown together

// 0x00RRGGBB to the bytes R, G, B, 255.
constexpr Pixel converted(Pixel pixel) {
  return 0xFF000000 | (pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF);
}

}  // namespace

void WebPixels::show(int id, std::span<const Pixel> pixels, int width, int height) {
  const bool isNew = width != width_ || height != height_;
  width_ = width;
  height_ = height;
  shown_.resize(pixels.size());
  converted_.resize(pixels.size());
  if (isNew) page_showPixels(id, converted_.data(), width, height, 0, 0);
  const auto rowSize = static_cast<std::size_t>(width);
  int first = -1;  // of the bands that wait to be shown
  for (int row = 0; row <= height; row += bandHeight) {
    const auto rows = static_cast<std::size_t>(std::clamp(height - row, 0, bandHeight));
    const std::size_t at = static_cast<std::size_t>(row) * rowSize;
    const std::size_t size = rows * rowSize;
    const bool isChanged = size > 0 && (isNew || std::memcmp(&shown_[at], &pixels[at], size * sizeof(Pixel)) != 0);
    if (isChanged) {
      std::copy_n(&pixels[at], size, &shown_[at]);
      std::transform(&pixels[at], &pixels[at] + size, &converted_[at], converted);
      if (first < 0) first = row;
    } else if (first >= 0) {
      const std::size_t from = static_cast<std::size_t>(first) * rowSize;
      page_showPixels(id, &converted_[from], width, height, first, std::min(row, height) - first);
      first = -1;
    }
  }
  if (first >= 0) {
    page_showPixels(id, &converted_[static_cast<std::size_t>(first) * rowSize], width, height, first, height - first);
  }
}

}  // namespace kelvora
