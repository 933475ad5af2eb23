#include "platform/win32/circlePixels.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelvora {
namespace {

constexpr Colour red = RGB(255, 0, 0);
constexpr Colour black = RGB(0, 0, 0);
constexpr std::uint32_t solid = 0xFF000000;
constexpr std::uint32_t solidRed = 0xFFFF0000;

TEST(CirclePixels, FillsTheMiddleAndLeavesTheCorners) {
  const auto pixels = circlePixels({.radius = 6, .lineWidth = 1, .fill = red, .line = black, .isDotted = false}, 13);
  ASSERT_EQ(pixels.size(), 169U);
  EXPECT_EQ(pixels[6 * 13 + 6], solidRed);
  EXPECT_EQ(pixels[0], 0U);
  EXPECT_EQ(pixels[168], 0U);
}

TEST(CirclePixels, DrawsTheLineAroundTheDisc) {
  // The line covers distances of 4 to 8 from the middle, which is between the two central pixels.
  const auto pixels = circlePixels({.radius = 6, .lineWidth = 4, .fill = red, .line = black, .isDotted = false}, 16);
  const auto* row = &pixels[8 * 16];
  EXPECT_EQ(row[8], solidRed);
  EXPECT_EQ(row[13], solid);
  EXPECT_EQ(row[2], solid);
}

TEST(CirclePixels, EdgesArePartlyCovered) {
  const auto pixels = circlePixels({.radius = 6, .lineWidth = 1, .fill = red, .line = black, .isDotted = false}, 13);
  EXPECT_TRUE(std::ranges::any_of(pixels, [](std::uint32_t pixel) { return pixel >> 24 > 50 && pixel >> 24 < 200; }));
}

TEST(CirclePixels, LooksTheSameFromAllFourSides) {
  const auto pixels = circlePixels({.radius = 6, .lineWidth = 1, .fill = red, .line = black, .isDotted = false}, 13);
  for (std::size_t i = 0; i < pixels.size(); ++i) EXPECT_EQ(pixels[i], pixels[pixels.size() - 1 - i]);
}

TEST(CirclePixels, ADottedLineHasGaps) {
  const Circle whole{.radius = 10, .lineWidth = 2, .fill = red, .line = black, .isDotted = false};
  Circle dotted = whole;
  dotted.isDotted = true;
  const auto count = [](const Circle& circle) { return std::ranges::count(circlePixels(circle, 24), solid); };
  EXPECT_GT(count(whole), 40);
  EXPECT_GT(count(dotted), 10);
  EXPECT_LT(count(dotted), count(whole));
}

}  // namespace
}  // namespace kelvora
