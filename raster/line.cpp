#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "raster/spans.h"
#include "raster/surface.h"
#include "raster/thickLine.h"

// A line of width 1 has one pixel in every column (in every row if it is steeper than 45 degrees): the one nearest to
// the line, halves downward (to the right). Its direction makes no difference.

namespace kelvora {
namespace {

// One axis of a thin line's walk. The line takes a step along the major axis for each pixel, and along the minor axis
// now and then.
struct Axis {
  std::int64_t start;
  std::int64_t end;
  std::int64_t size;      // of the image, pixels
  std::ptrdiff_t stride;  // pixels in memory between neighbouring coordinates
};

void drawThin(Pixel* pixels, Pixel pixel, Axis major, Axis minor) {
  if (major.end < major.start) {
    std::swap(major.start, major.end);
    std::swap(minor.start, minor.end);
  }
  const std::int64_t length = major.end - major.start;
  const std::int64_t rise = minor.end - minor.start;
  const std::int64_t steepness = std::abs(rise);
  // After t steps the minor coordinate is minor.start + floor((2 t rise + length) / (2 length)). The visible steps:
  std::int64_t first = std::max<std::int64_t>(0, -major.start);
  std::int64_t last = std::min(length, major.size - 1 - major.start);
  if (rise == 0) {
    if (minor.start < 0 || minor.start >= minor.size) return;
  } else {
    // In half pixels times length, from the start: the near and the far border of the image.
    const std::int64_t low = -length * (2 * minor.start + 1);
    const std::int64_t high = length * (2 * (minor.size - minor.start) - 1);
    if (rise > 0) {
      first = std::max(first, -floorDivide(-low, 2 * steepness));
      last = std::min(last, floorDivide(high - 1, 2 * steepness));
    } else {
      first = std::max(first, floorDivide(-high, 2 * steepness) + 1);
      last = std::min(last, floorDivide(-low, 2 * steepness));
    }
  }
  if (first > last) return;
  const std::int64_t unit = std::max<std::int64_t>(1, 2 * length);
  const std::int64_t dividend = 2 * first * rise + length;
  const std::int64_t offset = floorDivide(dividend, unit);
  Pixel* target = pixels + (major.start + first) * major.stride + (minor.start + offset) * minor.stride;
  const std::int64_t count = last - first + 1;
  if (rise == 0 && major.stride == 1) {
    SpanFiller(pixel).fill(target, count);
    return;
  }
  // The distance to the next minor step. A falling line counts the same way from the other side.
  std::int64_t error = dividend - offset * unit;
  if (rise < 0) error = unit - 1 - error;
  const std::ptrdiff_t minorStep = rise < 0 ? -minor.stride : minor.stride;
  for (std::int64_t i = 0; i < count; ++i) {
    *target = pixel;
    error += 2 * steepness;
    const bool isStep = error >= unit;
    error -= isStep ? unit : 0;
    target += major.stride + (isStep ? minorStep : 0);
  }
}

// Twips from 0 on both axes. Lines are cut off beyond.
constexpr double reach = double{maxPixel} * twipsPerPixel;

struct TwipPoint {
  double x;
  double y;
};

bool isFar(double coordinate) { return std::fabs(coordinate) > reach; }

// Clips to the square of `reach`, keeping the slope. False if nothing is left. The line's equation is run y - rise x =
// cross. Products of single-precision numbers are exact in doubles, so even two ends at 1e38 tell where the line
// between them passes the image.
bool clipFarEnds(TwipPoint& a, TwipPoint& b) {
  const auto areBothBeyond = [](double first, double second) {
    return (first > reach && second > reach) || (first < -reach && second < -reach);
  };
  if (areBothBeyond(a.x, b.x) || areBothBeyond(a.y, b.y)) return false;
  const double run = b.x - a.x;
  const double rise = b.y - a.y;
  const double cross = b.x * a.y - a.x * b.y;
  const auto cut = [&](TwipPoint& end) {
    const TwipPoint side{std::copysign(reach, end.x), std::copysign(reach, end.y)};
    if (isFar(end.x)) {
      const double y = (cross + rise * side.x) / run;
      if (std::fabs(y) <= reach) {
        end = {side.x, y};
        return true;
      }
    }
    if (isFar(end.y)) {
      const double x = (run * side.y - cross) / rise;
      if (std::fabs(x) <= reach) {
        end = {x, side.y};
        return true;
      }
    }
    return !isFar(end.x) && !isFar(end.y);
  };
  return cut(a) && cut(b);
}

}  // namespace

void Surface::Line(float x1, float y1, float x2, float y2) {
  TwipPoint a{x1, y1};
  TwipPoint b{x2, y2};
  if (isFar(x1) || isFar(y1) || isFar(x2) || isFar(y2)) {
    if (!clipFarEnds(a, b)) return;
  }
  const PixelPoint from{toPixels(a.x), toPixels(a.y)};
  const PixelPoint to{toPixels(b.x), toPixels(b.y)};
  const int width = std::clamp(DrawWidth, 1, maxPenWidth);
  const Pixel pixel = toPixel(ForeColor);
  const int above = width / 2;
  const int below = width - 1 - above;
  if (std::max(from.x, to.x) + below < 0 || std::min(from.x, to.x) - above >= width_) return;
  if (std::max(from.y, to.y) + below < 0 || std::min(from.y, to.y) - above >= height_) return;
  touch(std::min(from.x, to.x) - above, std::min(from.y, to.y) - above, std::max(from.x, to.x) + below,
        std::max(from.y, to.y) + below);
  if (width > 1) {
    drawThickLine({pixels_.data(), width_, height_, pixel}, {from.x, from.y}, {to.x, to.y}, width);
    return;
  }
  const Axis across{from.x, to.x, width_, 1};
  const Axis down{from.y, to.y, height_, width_};
  const bool isFlat = std::abs(to.x - from.x) >= std::abs(to.y - from.y);
  if (isFlat) {
    drawThin(pixels_.data(), pixel, across, down);
  } else {
    drawThin(pixels_.data(), pixel, down, across);
  }
}

}  // namespace kelvora
