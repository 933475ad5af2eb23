#pragma once

#include <cstdint>

namespace kelvora {

/// A colour of lines, texts and controls, one byte per channel.
struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  friend bool operator==(const Colour&, const Colour&) = default;
};

/// A colour from its three channels, each 0 to 255.
constexpr Colour RGB(int red, int green, int blue) {
  return {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(blue)};
}

/// A pixel in memory: 0x00RRGGBB. Backends may store the opacity in the top byte.
using Pixel = std::uint32_t;

constexpr Pixel toPixel(Colour colour) {
  return static_cast<Pixel>(colour.red) << 16 | static_cast<Pixel>(colour.green) << 8 | colour.blue;
}

}  // namespace kelvora
