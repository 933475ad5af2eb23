#include "platform/win32/pictureScaler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "base/randomGenerator.h"

namespace kelvora {
namespace {

using Pixels = std::vector<Pixel>;

constexpr int width = 67;
constexpr int height = 43;

Pixels noise() {
  RandomGenerator random;
  Pixels pixels(static_cast<std::size_t>(width * height));
  for (Pixel& pixel : pixels) pixel = static_cast<Pixel>(random.next() * 0x1000000);
  return pixels;
}

class Scales : public ::testing::TestWithParam<int> {
 protected:
  static int shown(int length) { return static_cast<int>(std::lround(length * GetParam() / 100.0)); }
  Pixels scale(const Pixels& pixels, const PixelArea& part) const {
    Pixels result(static_cast<std::size_t>(part.width * part.height));
    scaler.scale(pixels, part, result);
    return result;
  }
  Pixels whole(const Pixels& pixels) const { return scale(pixels, {0, 0, shown(width), shown(height)}); }

  PictureScaler scaler{width, height, shown(width), shown(height)};
};

TEST_P(Scales, PartsAreThoseOfTheWholePicture) {
  const Pixels pixels = noise();
  const Pixels expected = whole(pixels);
  constexpr int tileWidth = 16;
  constexpr int tileHeight = 8;
  Pixels actual(expected.size());
  for (int y = 0; y < height; y += tileHeight) {
    for (int x = 0; x < width; x += tileWidth) {
      const PixelArea part = scaler.reach({x, y, std::min(tileWidth, width - x), std::min(tileHeight, height - y)});
      const Pixels tile = scale(pixels, part);
      for (int row = 0; row < part.height; ++row) {
        std::copy_n(tile.begin() + row * part.width, part.width,
                    actual.begin() + (part.y + row) * shown(width) + part.x);
      }
    }
  }
  EXPECT_EQ(actual, expected);
}

TEST_P(Scales, AChangeIsSeenWithinItsReachOnly) {
  const Pixels before = noise();
  const Pixels shownBefore = whole(before);
  for (const auto& [x, y] : {std::pair{0, 0}, {1, 1}, {15, 7}, {16, 8}, {33, 21}, {width - 1, height - 1}}) {
    Pixels after = before;
    after[static_cast<std::size_t>(y * width + x)] ^= 0xFFFFFF;
    const Pixels shownAfter = whole(after);
    const PixelArea reach = scaler.reach({x, y, 1, 1});
    int left = shown(width);
    int right = -1;
    int top = shown(height);
    int bottom = -1;
    for (int at = 0; at < static_cast<int>(shownAfter.size()); ++at) {
      if (shownAfter[static_cast<std::size_t>(at)] == shownBefore[static_cast<std::size_t>(at)]) continue;
      left = std::min(left, at % shown(width));
      right = std::max(right, at % shown(width));
      top = std::min(top, at / shown(width));
      bottom = std::max(bottom, at / shown(width));
    }
    EXPECT_EQ(left, reach.x);
    EXPECT_EQ(right, reach.x + reach.width - 1);
    EXPECT_EQ(top, reach.y);
    EXPECT_EQ(bottom, reach.y + reach.height - 1);
  }
}

TEST_P(Scales, EvenColoursStayAsTheyAre) {
  const Pixels even(static_cast<std::size_t>(width * height), 0x12ABFE);
  EXPECT_TRUE(std::ranges::all_of(whole(even), [](Pixel pixel) { return pixel == 0x12ABFE; }));
}

INSTANTIATE_TEST_SUITE_P(Percent, Scales, ::testing::Values(100, 125, 150, 175, 200));

Pixels scaledRow(const Pixels& row, int shown) {
  Pixels result(static_cast<std::size_t>(shown));
  PictureScaler(static_cast<int>(row.size()), 1, shown, 1).scale(row, {0, 0, shown, 1}, result);
  return result;
}

TEST(PictureScaler, PixelsAreTheMeanOfWhatTheyCover) {
  EXPECT_EQ(scaledRow({0x000000, 0x646464}, 2), (Pixels{0x000000, 0x646464}));
  // The middle pixel covers half of each.
  EXPECT_EQ(scaledRow({0x000000, 0x646464}, 3), (Pixels{0x000000, 0x323232, 0x646464}));
  // Halves round up.
  EXPECT_EQ(scaledRow({0x000000, 0x010101}, 3), (Pixels{0x000000, 0x010101, 0x010101}));
  EXPECT_EQ(scaledRow({0x000000, 0x646464}, 4), (Pixels{0x000000, 0x000000, 0x646464, 0x646464}));
  // Each covers 0.8 pixels: of the second and third, for example, 0.2 and 0.6, 0.4 and 0.4.
  EXPECT_EQ(scaledRow({0x000000, 0x640000, 0x006400, 0x000064}, 5),
            (Pixels{0x000000, 0x4B0000, 0x323200, 0x004B19, 0x000064}));
}

TEST(PictureScaler, ColumnsAndRowsAreAlike) {
  Pixels result(3);
  const Pixels column{0x000000, 0x646464};
  PictureScaler(1, 2, 1, 3).scale(column, {0, 0, 1, 3}, result);
  EXPECT_EQ(result, (Pixels{0x000000, 0x323232, 0x646464}));
}

}  // namespace
}  // namespace kelvora
