#include "platform/web/webPixels.h"

#include <algorithm>
#include <cstddef>

#include "platform/web/page.h"

namespace kelvora {

namespace {

// 0x00RRGGBB to the bytes R, G, B, 255.
constexpr Pixel converted(Pixel pixel) {
  return 0xFF000000 | (pixel & 0xFF) << 16 | (pixel & 0xFF00) | (pixel >> 16 & 0xFF);
}

// The smallest area that covers both.
PixelArea covering(const PixelArea& one, const PixelArea& other) {
  const int left = std::min(one.x, other.x);
  const int top = std::min(one.y, other.y);
  return {left, top, std::max(one.x + one.width, other.x + other.width) - left,
          std::max(one.y + one.height, other.y + other.height) - top};
}

}  // namespace

void showPicture(int id, const Picture& picture) {
  std::vector<Pixel> shown(picture.pixels.size());
  std::transform(picture.pixels.begin(), picture.pixels.end(), shown.begin(), converted);
  page_showPicture(id, shown.data(), picture.width, picture.height);
}

void WebPixels::show(int id, std::span<const Pixel> pixels, int width, int height, std::span<const PixelArea> changes) {
  if (changes.empty()) return;
  converted_.resize(pixels.size());
  PixelArea shown = changes.front();
  for (const PixelArea& area : changes) {
    for (int row = area.y; row < area.y + area.height; ++row) {
      const std::ptrdiff_t first = std::ptrdiff_t{row} * width + area.x;
      std::transform(pixels.data() + first, pixels.data() + first + area.width, converted_.data() + first, converted);
    }
    shown = covering(shown, area);
  }
  page_showPixels(id, converted_.data(), width, height, shown.x, shown.y, shown.width, shown.height);
}

}  // namespace kelvora
