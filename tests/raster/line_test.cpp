#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <span>

#include "raster/surface.h"
#include "tests/raster/referenceSurface.h"
#include "tests/support/shortTests.h"

namespace kelvora {
namespace {

constexpr Colour white = RGB(255, 255, 255);

Surface blank(int width, int height) {
  Surface surface;
  surface.ForeColor = white;
  surface.resize(width, height);
  return surface;
}

void draw(Surface& surface, int x1, int y1, int x2, int y2) {
  surface.Line(twips(x1), twips(y1), twips(x2), twips(y2));
}

// Draws the same line on both surfaces, on a background that would reveal overdrawing.
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

TEST(Line, OfWidthOneIncludesBothEnds) {
  Surface surface = blank(6, 3);
  draw(surface, 1, 1, 4, 1);
  EXPECT_EQ(drawing(surface),
            "......\n"
            ".####.\n"
            "......\n");
}

TEST(Line, OfWidthOneCoversTheNearestPixelHalvesDownward) {
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

TEST(Line, OfNoLengthIsThePensDisc) {
  Surface surface = blank(7, 7);
  surface.DrawWidth = 5;
  draw(surface, 3, 3, 3, 3);  // within 2.5, squared 6.25: so (1, 2) is in and (2, 2) is not
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

TEST(Line, ClampsItsWidthToOneTo64) {
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

TEST(Line, KeepsBackgroundAndColours) {
  Surface surface = blank(3, 1);
  surface.ForeColor = RGB(17, 34, 51);
  draw(surface, 1, 0, 1, 0);
  EXPECT_EQ(surface.pixels()[0], 0U);
  EXPECT_EQ(surface.pixels()[1], 0x112233U);
  EXPECT_EQ(surface.pixels()[2], 0U);
}

TEST(Line, MatchesItsDefinitionForEveryDirectionAndWidth) {
  for (int width = 1; width <= 64; ++width) {
    const int step = width < 8 ? 3 : 11;
    for (int x = -26; x <= 26; x += step) {
      for (int y = -26; y <= 26; y += step) {
        ASSERT_EQ(compareLine(120, 120, 60, 60, 60 + x, 60 + y, width), "");
      }
    }
  }
}

TEST(Line, MatchesItsDefinitionAcrossTheBorders) {
  std::mt19937 draws(1);
  const auto between = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(draws); };
  for (int i = 0; i < 6000; ++i) {
    const int width = i % 4 == 0 ? 1 : between(2, 64);
    ASSERT_EQ(compareLine(41, 33, between(-60, 100), between(-60, 100), between(-60, 100), between(-60, 100), width),
              "");
  }
}

TEST(Line, MatchesItsDefinitionForFarEndPoints) {
  std::mt19937 draws(2);
  const auto between = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(draws); };
  for (int i = 0; i < 6000; ++i) {
    const int width = i % 3 == 0 ? 1 : between(2, 64);
    const int reach = i % 2 == 0 ? 1000 : 900000;
    // Through a point near the image, so that most lines are visible.
    const int x = between(-20, 60);
    const int y = between(-20, 60);
    const int dx = between(-reach, reach);
    const int dy = i % 5 == 0 ? between(-3, 3) : between(-reach, reach);
    const bool isTurned = i % 7 == 0;
    const int x1 = x - (isTurned ? dy : dx);
    const int y1 = y - (isTurned ? dx : dy);
    const int x2 = between(0, 1) == 0 ? x : x + (isTurned ? dy : dx);
    const int y2 = x2 == x ? y : y + (isTurned ? dx : dy);
    // In this range twips are still whole in single precision: below 15 million.
    ASSERT_EQ(compareLine(40, 37, x1, y1, x2, y2, width), "");
  }
}

// The end of a line as drawn, in twips: the centre of its pixel if it is near.
struct Exact {
  long double x;
  long double y;
  bool isNear;
};

Exact exactEnd(float x, float y) {
  constexpr float near = 15'000'000;
  if (std::fabs(x) > near || std::fabs(y) > near) return {x, y, false};
  const auto centre = [](long double twip) { return std::floor(twip / twipsPerPixel + 0.5L) * twipsPerPixel; };
  return {centre(x), centre(y), true};
}

// Tests for every pixel whether its centre is within half the width of the segment, by the equation of the line.
// Accepts either result within a fiftieth of a pixel, or half a pixel if both ends are clipped: each clipped end is
// rounded to a pixel, and between them the line is off by as much. Empty if the surface agrees.
std::string compareFarLine(const Surface& surface, float x1, float y1, float x2, float y2) {
  const int width = surface.DrawWidth;
  const Exact a = exactEnd(x1, y1);
  const Exact b = exactEnd(x2, y2);
  const long double run = b.x - a.x;
  const long double rise = b.y - a.y;
  const long double length = std::hypot(run, rise);
  const bool isFlat = std::fabs(run) >= std::fabs(rise);
  const long double open = a.isNear || b.isNear ? 0.02L : 0.52L;
  const auto pastEnd = [&](const Exact& end, long double towards, long double x, long double y) {
    return end.isNear && towards * ((x - end.x) * (run / length) + (y - end.y) * (rise / length)) < 0;
  };
  const std::span<const Pixel> pixels = surface.pixels();
  const int columns = surface.pixelWidth();
  for (int row = 0; row < surface.pixelHeight(); ++row) {
    for (int column = 0; column < columns;) {
      const long double shift = width % 2 == 0 ? 0.5L : 0.0L;
      const long double x = (column + shift) * twipsPerPixel;
      const long double y = (row + shift) * twipsPerPixel;
      const long double across = run * y - rise * x - (b.x * a.y - a.x * b.y);
      // A thin line is one pixel high or wide, a thick one as wide as its pen.
      long double away = std::fabs(across / (width > 1 ? length : isFlat ? run : rise));
      if (pastEnd(a, 1, x, y)) away = std::hypot(x - a.x, y - a.y);
      if (pastEnd(b, -1, x, y)) away = std::hypot(x - b.x, y - b.y);
      const long double over = away / twipsPerPixel - width / 2.0L;
      // The distance changes by at most a pixel from column to column, or by half of itself where the end begins. So
      // the columns from here to half as far are like this one.
      const int alike = 1 + std::max(0, static_cast<int>((std::min(std::fabs(over), 1000.0L) - 1) / 2));
      const int last = std::min(column + alike, columns);
      for (const int first = column; column < last; ++column) {
        if (column == first && std::fabs(over) < open) continue;
        const bool isDrawn = pixels[static_cast<std::size_t>(row * columns + column)] != 0;
        if (isDrawn == (over < 0)) continue;
        // At the end of a thin line only its last pixel counts, which is less than a pixel away.
        if (width == 1 && (pastEnd(a, 1, x, y) || pastEnd(b, -1, x, y)) && over < 0.5L) continue;
        return "line " + std::to_string(x1) + ", " + std::to_string(y1) + " to " + std::to_string(x2) + ", " +
               std::to_string(y2) + " width " + std::to_string(width) + ": pixel " + std::to_string(column) + ", " +
               std::to_string(row) + (isDrawn ? " is drawn" : " is missing");
      }
    }
  }
  return "";
}

TEST(Line, KeepsItsSlopeHoweverFarAwayItsEndsAre) {
  std::mt19937 draws(3);
  const auto between = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(draws);
  };
  constexpr int lines = hasShortTests ? 2'000 : 10'000;
  int seen = 0;
  for (int i = 0; i < lines; ++i) {
    Surface surface = blank(120, 90);
    surface.DrawWidth = i % 3 == 0 ? 1 : static_cast<int>(between(2, 65));
    const double angle = between(0, 6.283185307);
    const double far = std::pow(10, between(7.2, 38));
    const auto x1 = static_cast<float>(between(-300, 2100));
    const auto y1 = static_cast<float>(between(-300, 1650));
    // One line in ten is horizontal, and one in ten vertical.
    const auto x2 = i % 10 == 0 ? x1 : static_cast<float>(x1 + far * std::cos(angle));
    const auto y2 = i % 10 == 1 ? y1 : static_cast<float>(y1 + far * std::sin(angle));
    // Every fourth line has both ends far away, if single precision still places it on the image.
    const double back = i % 4 == 0 ? between(0.01, 100) : 0;
    const auto x0 = static_cast<float>(x1 - back * (static_cast<double>(x2) - x1));
    const auto y0 = static_cast<float>(y1 - back * (static_cast<double>(y2) - y1));
    if (!std::isfinite(x0) || !std::isfinite(y0)) continue;
    surface.Line(x0, y0, x2, y2);
    ASSERT_EQ(compareFarLine(surface, x0, y0, x2, y2), "") << i;
    const auto pixels = surface.pixels();
    seen += std::any_of(pixels.begin(), pixels.end(), [](Pixel pixel) { return pixel != 0; }) ? 1 : 0;
  }
  EXPECT_GT(seen, lines / 2);
}

TEST(Line, WithAnEndAtTheLimitEqualsOneClippedThere) {
  // Slope 1/2 through pixel (10, 5): the end at exactly a million pixels, and one twice as far, which is clipped there.
  Surface exact = blank(200, 100);
  Surface cut = blank(200, 100);
  draw(exact, 10, 5, 1'000'000, 500'000);
  cut.Line(twips(10), twips(5), 29'999'850, 14'999'925);
  EXPECT_EQ(drawing(cut), drawing(exact));
  // The same downwards, from the other end.
  Surface steep = blank(100, 200);
  Surface steepCut = blank(100, 200);
  draw(steep, 500'000, 1'000'000, 5, 10);
  steepCut.Line(14'999'925, 29'999'850, twips(5), twips(10));
  EXPECT_EQ(drawing(steepCut), drawing(steep));
}

TEST(Line, ThatMissesTheImageBetweenFarEndsDrawsNothing) {
  Surface surface = blank(30, 30);
  surface.DrawWidth = 64;
  const float far = 40'000'000;  // twips; the limit is 15 million
  surface.Line(far, 0, 0, far);
  surface.Line(-far, 0, 0, far);
  surface.Line(far, far, far, -far);
  surface.Line(-far, -far, far, -far);
  surface.Line(0, -far, 0, -far / 2);
  EXPECT_EQ(drawing(surface), drawing(blank(30, 30)));
}

TEST(Line, WithNaNEndsDoesNoHarm) {
  const float endless = std::numeric_limits<float>::infinity();
  const float none = std::numeric_limits<float>::quiet_NaN();
  for (const float x : {endless, -endless, none}) {
    for (const float y : {0.0F, endless, -endless, none}) {
      Surface surface = blank(30, 30);
      for (const int width : {1, 5}) {
        surface.DrawWidth = width;
        surface.Line(0, 0, x, y);
        surface.Line(y, x, 0, 0);
        surface.Line(x, y, -x, -y);
      }
      EXPECT_EQ(surface.pixels().size(), 900U);
    }
  }
}

TEST(Line, ClampsItsEndPointsToAMillionPixels) {
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
