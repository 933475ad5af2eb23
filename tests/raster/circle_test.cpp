#include <gtest/gtest.h>

#include <random>

#include "raster/surface.h"
#include "tests/raster/referenceSurface.h"

namespace kelvora {
namespace {

// 'o' for the outline, 'x' for the inside.
std::string drawnCircle(int size, int radius) {
  Surface surface;
  surface.resize(size, size);
  surface.FillColor = RGB(0, 0, 2);
  surface.Circle(twips(size / 2), twips(size / 2), twips(radius), RGB(0, 0, 1));
  std::string text;
  for (std::size_t i = 0; i < surface.pixels().size(); ++i) {
    text += ".ox"[surface.pixels()[i]];
    if ((i + 1) % static_cast<std::size_t>(size) == 0) text += '\n';
  }
  return text;
}

TEST(Circle, OfRadiusZeroIsOnePixel) {
  EXPECT_EQ(drawnCircle(3, 0),
            "...\n"
            ".o.\n"
            "...\n");
}

TEST(Circle, OfRadiusOneIsASquare) {
  EXPECT_EQ(drawnCircle(5, 1),  // the corners are 1.41 away, nearer than 1.5
            ".....\n"
            ".ooo.\n"
            ".oxo.\n"
            ".ooo.\n"
            ".....\n");
}

TEST(Circle, OfRadiusTwoHasNoCorners) {
  EXPECT_EQ(drawnCircle(7, 2),  // (1, 2) is 2.24 away, (2, 2) is 2.83: the limit is 2.5
            ".......\n"
            "..ooo..\n"
            ".oxxxo.\n"
            ".oxxxo.\n"
            ".oxxxo.\n"
            "..ooo..\n"
            ".......\n");
}

TEST(Circle, OfRadiusFourHasAnOutlineOfOnePixel) {
  EXPECT_EQ(drawnCircle(11, 4),  // the limit is 4.5: (2, 4) at 4.47 and (3, 3) at 4.24 are in
            "...........\n"
            "...ooooo...\n"
            "..oxxxxxo..\n"
            ".oxxxxxxxo.\n"
            ".oxxxxxxxo.\n"
            ".oxxxxxxxo.\n"
            ".oxxxxxxxo.\n"
            ".oxxxxxxxo.\n"
            "..oxxxxxo..\n"
            "...ooooo...\n"
            "...........\n");
}

TEST(Circle, OfNegativeRadiusIsNothing) { EXPECT_EQ(drawnCircle(3, -1), "...\n...\n...\n"); }

TEST(Circle, RoundsItsRadiusToPixels) {
  Surface surface;
  surface.resize(9, 9);
  surface.FillColor = RGB(255, 255, 255);
  surface.Circle(60, 60, 22.4F, RGB(255, 255, 255));  // 1.49 pixels
  EXPECT_EQ(drawing(surface).substr(3 * 10, 10), "...###...\n");
  surface.Circle(60, 60, 22.5F, RGB(255, 255, 255));
  EXPECT_EQ(drawing(surface).substr(4 * 10, 10), "..#####..\n");
}

TEST(Circle, IgnoresDrawWidthAndForeColor) {
  Surface surface;
  surface.resize(5, 5);
  surface.DrawWidth = 5;
  surface.ForeColor = RGB(255, 255, 255);
  surface.FillColor = RGB(0, 0, 2);
  surface.Circle(30, 30, 15, RGB(0, 0, 1));
  EXPECT_EQ(surface.pixels()[0], 0U);
  EXPECT_EQ(surface.pixels()[6], 1U);
  EXPECT_EQ(surface.pixels()[12], 2U);
}

TEST(Circle, MatchesItsDefinitionAnywhere) {
  std::mt19937 draws(3);
  const auto between = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(draws); };
  for (int i = 0; i < 3000; ++i) {
    const int x = between(-30, 70);
    const int y = between(-30, 60);
    const int radius = i % 2 == 0 ? between(0, 4) : between(0, 60);
    const bool isPlain = i % 3 == 0;
    Surface surface;
    surface.resize(43, 31);
    surface.FillColor = isPlain ? RGB(9, 9, 9) : RGB(1, 1, 1);
    surface.Circle(twips(x), twips(y), twips(radius), RGB(9, 9, 9));
    ReferenceSurface reference(43, 31, 0);
    reference.circle(x, y, radius, 0x090909, isPlain ? 0x090909 : 0x010101);
    ASSERT_EQ(difference(surface, reference), "") << x << ", " << y << " radius " << radius;
  }
}

TEST(Circle, MayBeFarLargerThanTheImage) {
  Surface surface;
  surface.resize(40, 40);
  surface.FillColor = RGB(1, 1, 1);
  surface.Circle(twips(20), twips(-899985), twips(900000), RGB(9, 9, 9));
  ReferenceSurface reference(40, 40, 0);
  reference.circle(20, -899985, 900000, 0x090909, 0x010101);
  EXPECT_EQ(difference(surface, reference), "");
}

}  // namespace
}  // namespace kelvora
