#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>

#include "generated/sourceFolder.h"
#include "platform/pictures/pictureFile.h"
#include "raster/twips.h"

/// Reads the pictures as the paint code does: cells in twips, mattes beside images.
namespace sheets {

inline constexpr kelvora::Pixel blackPixel = 0x000000;
inline constexpr kelvora::Pixel whitePixel = 0xFFFFFF;

inline kelvora::PicturePointer load(const std::string& name) {
  return kelvora::loadPictureFile(std::string(KELVORA_SOURCE_DIR) + "/assets/" + name + ".png");
}

/// A copy of the rectangle of `width` by `height` at (`x`, `y`), all in twips.
inline kelvora::Picture cell(const kelvora::Picture& sheet, double x, double y, double width, double height) {
  kelvora::Picture result{kelvora::toPixels(width), kelvora::toPixels(height), {}};
  for (int row = 0; row < result.height; ++row)
    for (int column = 0; column < result.width; ++column)
      result.pixels.push_back(sheet.pixels.at(
          static_cast<std::size_t>((kelvora::toPixels(y) + row) * sheet.width + kelvora::toPixels(x) + column)));
  return result;
}

/// The name of a sheet in a control array.
inline std::string numbered(const char* name, int number) { return name + std::to_string(number); }

/// The balls' cells, as the paint code cuts them out.
inline kelvora::Picture playerCell(const std::string& name, int frame) {
  return cell(*load(name), frame * 735, 0, 735, 735);
}
inline kelvora::Picture ballCell(int kind) { return cell(*load("balls"), kind * 315, 0, 315, 315); }

/// Hues of the players by colour number: red, yellow, green, cyan, blue, purple.
inline constexpr std::array<double, 6> playerHues = {0, 60, 120, 180, 240, 285};
/// Hues of the particles by kind: red, orange, yellow, lime, green, spring green, cyan, azure, blue, violet, magenta.
inline constexpr std::array<double, 11> particleHues = {0, 30, 60, 90, 120, 150, 180, 210, 240, 270, 305};
inline constexpr double hueTolerance = 15;

inline kelvora::Pixel at(const kelvora::Picture& picture, int x, int y) {
  return picture.pixels.at(static_cast<std::size_t>(y * picture.width + x));
}

inline double red(kelvora::Pixel pixel) { return pixel >> 16 & 255; }
inline double green(kelvora::Pixel pixel) { return pixel >> 8 & 255; }
inline double blue(kelvora::Pixel pixel) { return pixel & 255; }

/// A pixel's perceived brightness, 0 to 255.
inline double luma(kelvora::Pixel pixel) { return 0.299 * red(pixel) + 0.587 * green(pixel) + 0.114 * blue(pixel); }

/// The mean hue of a picture in degrees (red 0, green 120, blue 240), weighted by saturation.
inline double meanHue(const kelvora::Picture& picture) {
  double alpha = 0;
  double beta = 0;
  for (const auto pixel : picture.pixels) {
    alpha += red(pixel) - (green(pixel) + blue(pixel)) / 2;
    beta += (green(pixel) - blue(pixel)) * std::numbers::sqrt3 / 2;
  }
  const double degrees = std::atan2(beta, alpha) * 180 / std::numbers::pi;
  return degrees < 0 ? degrees + 360 : degrees;
}

/// The distance between two hues on the colour circle, 0 to 180 degrees.
inline double hueDistance(double a, double b) {
  const double way = std::fabs(a - b);
  return std::min(way, 360 - way);
}

/// The share of pixels with this value, 0 to 1.
inline double share(const kelvora::Picture& picture, kelvora::Pixel value) {
  return static_cast<double>(std::ranges::count(picture.pixels, value)) / static_cast<double>(picture.pixels.size());
}

}  // namespace sheets
