#include "platform/win32/circlePixels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelvora {

namespace {

/// Two thirds of a dotted line are drawn, in pieces twice as long as it is wide.
bool isOnDot(const Circle& circle, double x, double y) {
  constexpr double turn = 2 * std::numbers::pi;
  const double dots = std::max(std::round(turn * circle.radius / (3 * circle.lineWidth)), 1.0);
  const double along = (std::atan2(y, x) / turn + 1) * dots;
  return along - std::floor(along) < 2.0 / 3;
}

/// The colour at a point relative to the centre. Null outside the circle.
const Colour* colourAt(const Circle& circle, double x, double y) {
  const double distance = std::hypot(x, y);
  const bool isInLine = std::abs(distance - circle.radius) <= circle.lineWidth / 2;
  if (isInLine && (!circle.isDotted || isOnDot(circle, x, y))) return &circle.line;
  return distance <= circle.radius ? &circle.fill : nullptr;
}

}  // namespace

std::vector<std::uint32_t> circlePixels(const Circle& circle, int side) {
  constexpr int samples = 4;  // across a pixel
  constexpr std::uint32_t ofPixel = samples * samples;
  std::vector<std::uint32_t> pixels;
  for (int row = 0; row < side; ++row) {
    for (int column = 0; column < side; ++column) {
      std::uint32_t covered = 0;
      std::uint32_t red = 0;
      std::uint32_t green = 0;
      std::uint32_t blue = 0;
      for (int sample = 0; sample < samples * samples; ++sample) {
        const double x = column + (sample % samples + 0.5) / samples - side / 2.0;
        const double y = row + (sample / samples + 0.5) / samples - side / 2.0;
        const Colour* colour = colourAt(circle, x, y);
        if (colour == nullptr) continue;
        ++covered;
        red += colour->red;
        green += colour->green;
        blue += colour->blue;
      }
      pixels.push_back(covered * 255 / ofPixel << 24 | red / ofPixel << 16 | green / ofPixel << 8 | blue / ofPixel);
    }
  }
  return pixels;
}

}  // namespace kelvora
