#pragma once

#include <vector>

namespace kelvora {

/// A rectangle of pixels.
struct PixelArea {
  int x;
  int y;
  int width;
  int height;
  bool operator==(const PixelArea&) const = default;
};

/// Appends an area, or widens the last one if the new one continues it to the right.
inline void joinOrAppend(std::vector<PixelArea>& areas, const PixelArea& area) {
  if (!areas.empty()) {
    PixelArea& last = areas.back();
    if (last.y == area.y && last.height == area.height && last.x + last.width == area.x) {
      last.width += area.width;
      return;
    }
  }
  areas.push_back(area);
}

}  // namespace kelvora
