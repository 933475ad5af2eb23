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

void WebPixels::show(int id, std::span<const Pixel> pixels, int width, int height, std::span<const PixelArea> changes) {
  converted_.resize(pixels.size());
  for (const PixelArea& area : changes) {
    for (int row = area.y; row < area.y + area.height; ++row) {
      const std::ptrdiff_t first = std::ptrdiff_t{row} * width + area.x;
      std::transform(pixels.data() + first, pixels.data() + first + area.width, converted_.data() + first, converted);
    }
  }
  // Few large copies cost the browser less than many small ones. So areas in adjacent rows are shown as one.
  for (std::size_t next = 0; next < changes.size();) {
    PixelArea shown = changes[next];
    while (++next < changes.size() && changes[next].y <= shown.y + shown.height) {
      shown = covering(shown, changes[next]);
    }
    page_showPixels(id, converted_.data(), width, height, shown.x, shown.y, shown.width, shown.height);
  }
}

}  // namespace kelvora
