#include <algorithm>
#include <array>
#include <cstdlib>
#include <type_traits>
#include <utility>

#include "raster/spans.h"
#include "raster/surface.h"

// A disc of radius r pixels has the pixels nearer than r + 1/2 to its centre: dx dx + dy dy <= r r + r in whole
// numbers. Its outline is the pixels that have one of their four neighbours outside.

namespace kelvora {
namespace {

// Row widths of small discs. Nearly every circle in the game is a particle with a radius of one or two pixels.
constexpr int maxSmallRadius = 7;
using Reaches = std::array<std::array<int, maxSmallRadius + 2>, maxSmallRadius + 1>;
constexpr Reaches smallReaches = [] {
  Reaches reaches{};
  for (int radius = 0; radius <= maxSmallRadius; ++radius) {
    for (int row = 0; row <= maxSmallRadius + 1; ++row) {
      int reach = -1;
      while ((reach + 1) * (reach + 1) + row * row <= radius * radius + radius) ++reach;
      reaches.at(static_cast<std::size_t>(radius)).at(static_cast<std::size_t>(row)) = reach;
    }
  }
  return reaches;
}();

// How far the disc's row extends to either side of the centre; -1 above and below the disc.
int rowReach(std::int64_t radius, std::int64_t row) {
  if (radius <= maxSmallRadius) return smallReaches[static_cast<std::size_t>(radius)][static_cast<std::size_t>(row)];
  const std::int64_t rest = radius * radius + radius - row * row;
  return rest < 0 ? -1 : static_cast<int>(wholeRoot(rest));
}

// A whole small disc of one colour. The game paints hundreds per frame, too small for loops to pay off.
template <int radius, int... rows>
void fillDisc(Pixel* centre, std::ptrdiff_t pitch, Pixel pixel, std::integer_sequence<int, rows...>) {
  const auto fillRow = [&]<int row>(std::integral_constant<int, row>) {
    constexpr int reach = smallReaches[radius][static_cast<std::size_t>(row < 0 ? -row : row)];
    Pixel* const line = centre + row * pitch - reach;
    for (int i = 0; i <= 2 * reach; ++i) line[i] = pixel;
  };
  (fillRow(std::integral_constant<int, rows - radius>{}), ...);
}

void fillSmallDisc(Pixel* centre, int radius, std::ptrdiff_t pitch, Pixel pixel) {
  if (radius == 1) return fillDisc<1>(centre, pitch, pixel, std::make_integer_sequence<int, 3>{});
  fillDisc<2>(centre, pitch, pixel, std::make_integer_sequence<int, 5>{});
}

constexpr std::size_t maxSmallDiscs = 1024;

}  // namespace

void Surface::clearSmallDiscs() {
  for (const SmallDisc& disc : smallDiscs_) {
    fillSmallDisc(pixels_.data() + disc.centre, disc.radius, width_, clearedTo_);
  }
  smallDiscs_.clear();
}

void Surface::Circle(float x, float y, float radius, Colour outline) {
  const int centreX = toPixels(x);
  const int centreY = toPixels(y);
  const int reach = toPixels(radius);
  if (reach < 0 || centreX + reach < 0 || centreX - reach >= width_) return;
  const bool isPlain = outline == FillColor;
  const bool isWhole = centreX >= reach && centreX + reach < width_ && centreY >= reach && centreY + reach < height_;
  if (isPlain && isWhole && (reach == 1 || reach == 2)) {
    const SmallDisc disc{centreY * width_ + centreX, reach};
    if (background_ || smallDiscs_.size() == maxSmallDiscs) {
      touch(centreX - reach, centreY - reach, centreX + reach, centreY + reach);
    } else {
      smallDiscs_.push_back(disc);
    }
    return fillSmallDisc(pixels_.data() + disc.centre, reach, width_, toPixel(outline));
  }
  const SpanFiller rim(toPixel(outline));
  const SpanFiller inside(toPixel(FillColor));
  const int first = std::max(0, centreY - reach);
  const int last = std::min(height_ - 1, centreY + reach);
  if (first > last) return;
  touch(centreX - reach, first, centreX + reach, last);
  for (int row = first; row <= last; ++row) {
    Pixel* const line = pixels_.data() + std::ptrdiff_t{row} * width_;
    const auto fill = [&](const SpanFiller& filler, int left, int right) {
      left = std::max(left, 0);
      right = std::min(right, width_ - 1);
      if (left <= right) filler.fill(line + left, right - left + 1);
    };
    const std::int64_t distance = std::abs(row - centreY);
    const int end = rowReach(reach, distance);
    if (isPlain) {
      fill(rim, centreX - end, centreX + end);
      continue;
    }
    // The outline begins where the next row outward ends, and always includes the row's last pixel.
    const int rimStart = std::min(end, rowReach(reach, distance + 1) + 1);
    fill(rim, centreX - end, centreX - rimStart);
    fill(inside, centreX - rimStart + 1, centreX + rimStart - 1);
    fill(rim, centreX + rimStart, centreX + end);
  }
}

}  // namespace kelvora
