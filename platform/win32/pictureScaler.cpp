#include "platform/win32/pictureScaler.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace kelvora {

PictureScaler::PictureScaler(int width, int height, int shownWidth, int shownHeight)
    : width_(width), height_(height), columns_(mixtures(width, shownWidth)), rows_(mixtures(height, shownHeight)) {}

std::vector<PictureScaler::Mixture> PictureScaler::mixtures(int length, int shownLength) {
  std::vector<Mixture> all;
  all.reserve(static_cast<std::size_t>(shownLength));
  for (std::int64_t at = 0; at < shownLength; ++at) {
    // A shown pixel covers `length` parts of a line on which those of the picture have `shownLength` parts each.
    const std::int64_t first = at * length / shownLength;
    const std::int64_t beyond = (at + 1) * length - (first + 1) * shownLength;
    const std::int64_t weight = beyond <= 0 ? 0 : (beyond * 256 + length / 2) / length;
    all.push_back({static_cast<int>(first), static_cast<Pixel>(std::min<std::int64_t>(weight, 256))});
  }
  return all;
}

PixelArea PictureScaler::reach(const PixelArea& area) const {
  const auto range = [](const std::vector<Mixture>& all, int begin, int end) {
    const auto isBefore = [](const Mixture& one, int place) {
      return one.first + (one.nextWeight > 0 ? 1 : 0) < place;
    };
    const auto first = std::lower_bound(all.begin(), all.end(), begin, isBefore);
    const auto last =
        std::lower_bound(first, all.end(), end, [](const Mixture& one, int place) { return one.first < place; });
    return std::pair{static_cast<int>(first - all.begin()), static_cast<int>(last - first)};
  };
  const auto [x, width] = range(columns_, area.x, area.x + area.width);
  const auto [y, height] = range(rows_, area.y, area.y + area.height);
  return {x, y, width, height};
}

/// Two channels at a time.
Pixel PictureScaler::mixed(Pixel first, Pixel next, Pixel nextWeight) {
  constexpr Pixel channels = 0xFF00FF;
  constexpr Pixel half = 0x800080;
  const Pixel firstWeight = 256 - nextWeight;
  const Pixel redAndBlue = ((first & channels) * firstWeight + (next & channels) * nextWeight + half) >> 8 & channels;
  const Pixel green = ((first >> 8 & channels) * firstWeight + (next >> 8 & channels) * nextWeight + half) & ~channels;
  return redAndBlue | green;
}

void PictureScaler::scale(std::span<const Pixel> pixels, const PixelArea& part, std::span<Pixel> shown) const {
  if (part.width <= 0) return;
  const auto columns =
      std::span(columns_).subspan(static_cast<std::size_t>(part.x), static_cast<std::size_t>(part.width));
  const int begin = columns.front().first;
  const auto length = static_cast<std::size_t>(std::min(columns.back().first + 2, width_) - begin);
  std::vector<Pixel> row(length + 1);  // the last column of the picture has no next one
  auto out = shown.begin();
  for (int y = part.y; y < part.y + part.height; ++y) {
    const auto [first, nextWeight] = rows_[static_cast<std::size_t>(y)];
    const auto rowAt = [&](int index) {
      return pixels.subspan(static_cast<std::size_t>(std::min(index, height_ - 1)) * static_cast<std::size_t>(width_) +
                                static_cast<std::size_t>(begin),
                            length);
    };
    const auto above = rowAt(first);
    const auto below = rowAt(first + 1);
    if (nextWeight == 0) {
      std::copy(above.begin(), above.end(), row.begin());
    } else {
      for (std::size_t x = 0; x < length; ++x) row[x] = mixed(above[x], below[x], nextWeight);
    }
    for (const Mixture& column : columns) {
      const auto x = static_cast<std::size_t>(column.first - begin);
      *out++ = mixed(row[x], row[x + 1], column.nextWeight);
    }
  }
}

}  // namespace kelvora
