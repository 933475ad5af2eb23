#include "raster/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "tests/raster/referenceSurface.h"

namespace kelvora {
namespace {

TEST(ToPixels, TakesTheNearestPixelHalvesUpward) {
  EXPECT_EQ(toPixels(0), 0);
  EXPECT_EQ(toPixels(7.4), 0);
  EXPECT_EQ(toPixels(7.5), 1);
  EXPECT_EQ(toPixels(-7.5), 0);
  EXPECT_EQ(toPixels(-7.6), -1);
  EXPECT_EQ(toPixels(11445), 763);
  EXPECT_EQ(toPixels(9120), 608);
}

TEST(ToPixels, RoundsEveryHalfUpwardAndItsNeighboursToTheirSides) {
  for (int pixel = -70'000; pixel <= 70'000; ++pixel) {
    const float half = static_cast<float>(pixel) * 15 - 7.5F;
    ASSERT_EQ(toPixels(half), pixel);
    ASSERT_EQ(toPixels(std::nextafter(half, 1e9F)), pixel) << pixel;
    ASSERT_EQ(toPixels(std::nextafter(half, -1e9F)), pixel - 1) << pixel;
  }
}

TEST(ToPixels, ClampsFarValuesToAMillion) {
  EXPECT_EQ(toPixels(14'999'985), 999'999);
  EXPECT_EQ(toPixels(-14'999'985), -999'999);

  EXPECT_EQ(toPixels(1e30), 1000000);
  EXPECT_EQ(toPixels(-1e30), -1000000);
  EXPECT_EQ(toPixels(std::numeric_limits<double>::quiet_NaN()), -1000000);
}

TEST(Colour, IsThreeBytesOfAPixel) { EXPECT_EQ(toPixel(RGB(0x12, 0x34, 0x56)), 0x123456U); }

TEST(Cls, ClearsToTheBackgroundColourAndMovesThePen) {
  Surface surface;
  surface.resize(3, 2);
  surface.BackColor = RGB(1, 2, 3);
  surface.CurrentX = 500;
  surface.CurrentY = 600;
  surface.Cls();
  EXPECT_EQ(pixelsOf(surface), std::vector<Pixel>(6, 0x010203));
  EXPECT_EQ(surface.CurrentX, 0);
  EXPECT_EQ(surface.CurrentY, 0);
}

TEST(Cls, RestoresTheBackgroundPictureAtTheTopLeft) {
  Surface surface;
  surface.BackColor = RGB(0, 0, 9);
  surface.resize(3, 3);
  surface.setBackground(std::make_shared<const Picture>(Picture{2, 2, {1, 2, 3, 4}}));
  const std::vector<Pixel> expected = {1, 2, 9, 3, 4, 9, 9, 9, 9};
  EXPECT_EQ(pixelsOf(surface), expected) << "clears at once";
  surface.Line(0, 0, 30, 30);
  surface.Cls();
  EXPECT_EQ(pixelsOf(surface), expected);
}

TEST(Cls, ClipsABackgroundThatIsTooLarge) {
  Surface surface;
  surface.resize(2, 1);
  surface.setBackground(std::make_shared<const Picture>(Picture{3, 2, {1, 2, 3, 4, 5, 6}}));
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{1, 2}));
}

TEST(Background, OfTheImagesSizeTakesItsMemoryOnceUntilItIsDrawnOn) {
  Surface surface;
  surface.resize(2, 2);
  const auto background = std::make_shared<const Picture>(Picture{2, 2, {1, 2, 3, 4}});
  surface.setBackground(background);
  EXPECT_EQ(surface.pixels().data(), background->pixels.data());
  surface.ForeColor = RGB(0, 0, 9);
  surface.Line(15, 15, 15, 15);
  EXPECT_NE(surface.pixels().data(), background->pixels.data());
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{1, 2, 3, 9}));
  EXPECT_EQ(background->pixels, (std::vector<Pixel>{1, 2, 3, 4}));
  surface.Cls();
  EXPECT_EQ(pixelsOf(surface), background->pixels);
}

TEST(Background, OfAnotherSizeIsCopied) {
  Surface surface;
  surface.resize(2, 2);
  surface.setBackground(std::make_shared<const Picture>(Picture{2, 2, {1, 2, 3, 4}}));
  surface.resize(3, 1);
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{1, 2, 0}));
  surface.setBackground(std::make_shared<const Picture>(Picture{3, 2, {1, 2, 3, 4, 5, 6}}));
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{1, 2, 3}));
  surface.setBackground(std::make_shared<const Picture>(Picture{4, 1, {1, 2, 3, 4}}));
  EXPECT_EQ(pixelsOf(surface), (std::vector<Pixel>{1, 2, 3}));
}

TEST(Cls, UsesNoBackgroundAfterItsRemoval) {
  Surface surface;
  surface.resize(1, 1);
  surface.setBackground(std::make_shared<const Picture>(Picture{1, 1, {7}}));
  surface.setBackground(nullptr);
  EXPECT_EQ(pixelsOf(surface), std::vector<Pixel>{0});
  EXPECT_EQ(surface.background(), nullptr);
}

// Only drawn parts are cleared, so every operation must record where it draws.
TEST(Cls, ClearsEverythingDrawnAnywhere) {
  auto sheet = std::make_shared<Picture>(Picture{49, 49, std::vector<Pixel>(49 * 49, 0x123456)});
  auto background = std::make_shared<Picture>(Picture{100, 50, std::vector<Pixel>(100 * 50, 0x070809)});
  std::mt19937 draws(3);
  const auto place = [&draws] { return static_cast<float>(static_cast<int>(draws() % 4500) - 500); };
  for (const bool withBackground : {false, true}) {
    Surface surface;
    surface.resize(203, 131);
    surface.ForeColor = RGB(1, 2, 3);
    surface.FillColor = RGB(4, 5, 6);
    surface.BackColor = RGB(0, 9, 0);
    if (withBackground) surface.setBackground(background);
    surface.Cls();
    const std::vector<Pixel> clear(surface.pixels().begin(), surface.pixels().end());
    for (int round = 0; round < 2000; ++round) {
      surface.DrawWidth = round % 65;
      switch (round % 4) {
        case 0:
          surface.Line(place(), place(), place(), place());
          break;
        case 1:
          surface.Circle(place(), place(), place() / 10, RGB(7, 7, 7));
          break;
        case 2:
          surface.PaintPicture(*sheet, place(), place(), 735, 735, 0, 0, SRCCOPY);
          break;
        default:
          surface.PaintPicture(*sheet, place(), place(), 735, 735, place() / 9, 0, SRCPAINT);
          break;
      }
      surface.Cls();
      ASSERT_TRUE(std::equal(clear.begin(), clear.end(), surface.pixels().begin())) << "round " << round;
    }
  }
}

TEST(Cls, ClearsAnyNumberOfParticles) {
  for (const int count : {1, 1024, 1025, 5000}) {
    Surface surface;
    surface.resize(101, 57);
    surface.FillColor = RGB(9, 9, 9);
    std::mt19937 draws(5);
    for (int i = 0; i < count; ++i) {
      const auto x = static_cast<float>(draws() % 1600);
      const auto y = static_cast<float>(draws() % 900);
      surface.Circle(x, y, static_cast<float>(draws() % 45), RGB(9, 9, 9));
    }
    EXPECT_NE(pixelsOf(surface), std::vector<Pixel>(101 * 57, 0)) << count;
    surface.Cls();
    EXPECT_EQ(pixelsOf(surface), std::vector<Pixel>(101 * 57, 0)) << count;
  }
}

TEST(Cls, RestoresThePictureUnderParticles) {
  auto background = std::make_shared<Picture>(Picture{20, 10, std::vector<Pixel>(200, 0x070809)});
  Surface surface;
  surface.resize(20, 10);
  surface.FillColor = RGB(9, 9, 9);
  surface.Circle(150, 75, 30, RGB(9, 9, 9));
  surface.setBackground(background);
  EXPECT_EQ(pixelsOf(surface), background->pixels);
  surface.Circle(150, 75, 30, RGB(9, 9, 9));
  EXPECT_NE(pixelsOf(surface), background->pixels);
  surface.Cls();
  EXPECT_EQ(pixelsOf(surface), background->pixels);
}

TEST(Cls, ClearsWideImagesDrawnOnWhollyAndInPart) {
  for (const int width : {1024, 1025, 2047, 2100}) {
    Surface surface;
    surface.resize(width, 21);
    surface.BackColor = RGB(0, 3, 0);
    surface.Cls();
    surface.DrawWidth = 64;
    const std::vector<Pixel> clear(static_cast<std::size_t>(width) * 21, 0x000300);
    surface.Line(0, 150, static_cast<float>(width * 15), 150);  // all of it
    surface.Cls();
    EXPECT_EQ(pixelsOf(surface), clear) << width;
    surface.DrawWidth = 5;
    surface.Line(0, 150, static_cast<float>(width * 15), 150);  // the middle rows
    surface.Cls();
    EXPECT_EQ(pixelsOf(surface), clear) << width;
    surface.Line(15000, 0, 15900, 300);  // across the 1024th column
    surface.Cls();
    EXPECT_EQ(pixelsOf(surface), clear) << width;
  }
}

TEST(Resize, ForgetsEarlierDrawing) {
  Surface surface;
  surface.resize(40, 40);
  surface.FillColor = RGB(9, 9, 9);
  surface.Circle(555, 555, 30, RGB(9, 9, 9));  // outside what is drawn next
  surface.resize(3, 2);
  surface.Cls();
  EXPECT_EQ(pixelsOf(surface), std::vector<Pixel>(6, 0));
}

TEST(Resize, GivesAClearedImage) {
  Surface surface;
  surface.BackColor = RGB(0, 0, 5);
  surface.resize(2, 2);
  surface.Line(0, 0, 15, 15);
  surface.resize(3, 1);
  EXPECT_EQ(surface.pixelWidth(), 3);
  EXPECT_EQ(surface.pixelHeight(), 1);
  EXPECT_EQ(pixelsOf(surface), std::vector<Pixel>(3, 5));
}

TEST(Resize, TreatsNegativeSizesAsZero) {
  Surface surface;
  surface.resize(-5, 10);
  EXPECT_EQ(surface.pixelWidth(), 0);
  EXPECT_EQ(surface.pixelHeight(), 10);
  EXPECT_TRUE(surface.pixels().empty());
}

}  // namespace
}  // namespace kelvora
