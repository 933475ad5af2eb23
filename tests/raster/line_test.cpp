#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <random>

#include "raster/surface.h"
#include "tests/raster/referenceSurface.h"

namespace kelvora {
namespace {

constexpr Colour white = RGB(255, 255, 255);

float twips(int pixels) { return static_cast<float>(pixels * twipsPerPixel); }

Surface blank(int width, int height) {
  Surface surface;
  surface.ForeColor = white;
  surface.resize(width, height);
  return surface;
}

void draw(Surface& surface, int x1, int y1, int x2, int y2) {
  surface.Line(twips(x1), twips(y1), twips(x2), twips(y2));
}

// The same line on both surfaces, on a colour so that overdrawing would show.
std::string compareLine(int imageWidth, int imageHeight, int x1, int y1, int x2, int y2, int width) {
  Surface surface;
  surface.BackColor = RGB(1, 2, 3);
  surface.ForeColor = RGB(200, 100, 50);
  surface.resize(imageWidth, imageHeight);
  surface.DrawWidth = width;
  draw(surface, x1, y1, x2, y2);
  ReferenceSurface reference(imageWidth, imageHeight, 0x010203);
  reference.line(x1, y1, x2, y2, width, 0xC86432);
  const std::string found = difference(surface, reference);
  if (found.empty()) return found;
  return "line " + std::to_string(x1) + ", " + std::to_string(y1) + " to " + std::to_string(x2) + ", " +
         std::to_string(y2) + " width " + std::to_string(width) + ": " + found;
}

TEST(Line, OfWidthOneHasBothItsEnds) {
  Surface surface = blank(6, 3);
  draw(surface, 1, 1, 4, 1);
  EXPECT_EQ(drawing(surface),
            "......\n"
            ".####.\n"
            "......\n");
}

TEST(Line, OfWidthOneTakesTheNearestPixelHalvesDownward) {
  Surface surface = blank(6, 4);
  draw(surface, 0, 1, 4, 3);  // heights 1, 1.5, 2, 2.5, 3
  EXPECT_EQ(drawing(surface),
            "......\n"
            "#.....\n"
            ".##...\n"
            "...##.\n");
}

TEST(Line, OfWidthOneIsTheSameFromEitherEnd) {
  for (int x = 0; x < 9; ++x) {
    for (int y = 0; y < 9; ++y) {
      Surface there = blank(9, 9);
      Surface back = blank(9, 9);
      draw(there, 4, 4, x, y);
      draw(back, x, y, 4, 4);
      ASSERT_EQ(drawing(there), drawing(back)) << x << ", " << y;
    }
  }
}

TEST(Line, OfNoLengthIsItsPen) {
  Surface surface = blank(7, 7);
  surface.DrawWidth = 5;
  draw(surface, 3, 3, 3, 3);  // within 2.5: 6.25 in squares of pixels, so (1, 2) is in and (2, 2) is not
  EXPECT_EQ(drawing(surface),
            ".......\n"
            "..###..\n"
            ".#####.\n"
            ".#####.\n"
            ".#####.\n"
            "..###..\n"
            ".......\n");
}

TEST(Line, OfEvenWidthLiesHalfAPixelUpAndLeft) {
  Surface surface = blank(8, 5);
  surface.DrawWidth = 2;
  draw(surface, 2, 2, 5, 2);
  EXPECT_EQ(drawing(surface),
            "........\n"
            ".#####..\n"
            ".#####..\n"
            "........\n"
            "........\n");
}

TEST(Line, HasRoundEnds) {
  Surface surface = blank(12, 7);
  surface.DrawWidth = 5;
  draw(surface, 3, 3, 8, 3);
  EXPECT_EQ(drawing(surface),
            "............\n"
            "..########..\n"
            ".##########.\n"
            ".##########.\n"
            ".##########.\n"
            "..########..\n"
            "............\n");
}

TEST(Line, CoversAsManyRowsOrColumnsAsItIsWide) {
  for (int width = 1; width <= 64; ++width) {
    Surface level = blank(200, 100);
    level.DrawWidth = width;
    draw(level, 70, 50, 130, 50);
    int rows = 0;
    for (int y = 0; y < 100; ++y) rows += level.pixels()[static_cast<std::size_t>(y * 200 + 100)] != 0 ? 1 : 0;
    EXPECT_EQ(rows, width);
    Surface upright = blank(100, 200);
    upright.DrawWidth = width;
    draw(upright, 50, 70, 50, 130);
    int columns = 0;
    for (int x = 0; x < 100; ++x) columns += upright.pixels()[static_cast<std::size_t>(100 * 100 + x)] != 0 ? 1 : 0;
    EXPECT_EQ(columns, width);
  }
}

TEST(Line, HoldsItsWidthBetweenOneAnd64) {
  for (const auto& [asked, held] : {std::pair{65, 64}, {1000000, 64}, {0, 1}, {-7, 1}}) {
    Surface surface = blank(90, 90);
    Surface expected = blank(90, 90);
    surface.DrawWidth = asked;
    expected.DrawWidth = held;
    draw(surface, 40, 40, 60, 50);
    draw(expected, 40, 40, 60, 50);
    EXPECT_EQ(drawing(surface), drawing(expected)) << asked;
  }
}

TEST(Line, EndsAtWholePixelsHalvesUpward) {
  Surface surface = blank(5, 1);
  surface.Line(7.5F, 0, 52.4F, 7.4F);  // 0.5 is pixel 1, 3.49 is pixel 3, 0.49 is pixel 0
  EXPECT_EQ(drawing(surface), ".###.\n");
}

TEST(Line, LeavesBackgroundAndColoursAlone) {
  Surface surface = blank(3, 1);
  surface.ForeColor = RGB(17, 34, 51);
  draw(surface, 1, 0, 1, 0);
  EXPECT_EQ(surface.pixels()[0], 0U);
  EXPECT_EQ(surface.pixels()[1], 0x112233U);
  EXPECT_EQ(surface.pixels()[2], 0U);
}

TEST(Line, AgreesWithItsDefinitionForEveryDirectionAndWidth) {
  for (int width = 1; width <= 64; ++width) {
    const int step = width < 8 ? 3 : 11;
    for (int x = -26; x <= 26; x += step) {
      for (int y = -26; y <= 26; y += step) {
        ASSERT_EQ(compareLine(120, 120, 60, 60, 60 + x, 60 + y, width), "");
      }
    }
  }
}

TEST(Line, AgreesWithItsDefinitionAcrossTheBorders) {
  std::mt19937 draws(1);
  const auto between = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(draws); };
  for (int i = 0; i < 6000; ++i) {
    const int width = i % 4 == 0 ? 1 : between(2, 64);
    ASSERT_EQ(compareLine(41, 33, between(-60, 100), between(-60, 100), between(-60, 100), between(-60, 100), width),
              "");
  }
}

TEST(Line, AgreesWithItsDefinitionForFarEndPoints) {
  std::mt19937 draws(2);
  const auto between = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(draws); };
  for (int i = 0; i < 6000; ++i) {
    const int width = i % 3 == 0 ? 1 : between(2, 64);
    const int reach = i % 2 == 0 ? 1000 : 900000;
    // Through a point near the image, so that most of the lines can be seen.
    const int x = between(-20, 60);
    const int y = between(-20, 60);
    const int dx = between(-reach, reach);
    const int dy = i % 5 == 0 ? between(-3, 3) : between(-reach, reach);
    const bool isTurned = i % 7 == 0;
    const int x1 = x - (isTurned ? dy : dx);
    const int y1 = y - (isTurned ? dx : dy);
    const int x2 = between(0, 1) == 0 ? x : x + (isTurned ? dy : dx);
    const int y2 = x2 == x ? y : y + (isTurned ? dx : dy);
    // Twips of such numbers are still whole in single precision: below 15 million.
    ASSERT_EQ(compareLine(40, 37, x1, y1, x2, y2, width), "");
  }
}

TEST(Line, HoldsItsEndPointsWithinAMillionPixels) {
  Surface surface = blank(30, 30);
  surface.DrawWidth = 3;
  const float farthest = std::numeric_limits<float>::max();
  surface.Line(-farthest, twips(15), farthest, twips(15));
  ReferenceSurface reference(30, 30, 0);
  reference.line(-1000000, 15, 1000000, 15, 3, 0xFFFFFF);
  EXPECT_EQ(difference(surface, reference), "");
  surface.Line(-farthest, -farthest, farthest, farthest);
  reference.line(-1000000, -1000000, 1000000, 1000000, 3, 0xFFFFFF);
  EXPECT_EQ(difference(surface, reference), "");
}

TEST(Line, OutsideTheImageChangesNothing) {
  Surface surface = blank(20, 20);
  surface.DrawWidth = 8;
  draw(surface, -30, -30, -5, 40);
  draw(surface, 30, 5, 24, 15);
  draw(surface, 0, -5, 20, -6);
  draw(surface, -40, 24, 60, 24);
  EXPECT_EQ(drawing(surface), drawing(blank(20, 20)));
  draw(surface, 10, -3, 10, -3);  // its lowest row is -3 + 3
  EXPECT_NE(drawing(surface), drawing(blank(20, 20)));
}

TEST(Line, OnAnImageWithoutPixelsDoesNothing) {
  for (const auto& [width, height] : {std::pair{0, 0}, {0, 5}, {5, 0}}) {
    Surface surface = blank(width, height);
    for (const int pen : {1, 2, 9}) {
      surface.DrawWidth = pen;
      draw(surface, -3, -3, 3, 3);
      draw(surface, 0, 0, 0, 0);
    }
    EXPECT_TRUE(surface.pixels().empty());
  }
}

}  // namespace
}  // namespace kelvora
