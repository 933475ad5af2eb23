#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "raster/surface.h"
#include "tests/raster/referenceSurface.h"
#include "tests/support/shortTests.h"

namespace kelvora {
namespace {

using Texts = std::vector<std::string>;

// As "16x8+32+0", the usual notation.
Texts textsOf(std::span<const PixelArea> areas) {
  Texts texts;
  for (const PixelArea& area : areas) {
    texts.push_back(std::to_string(area.width) + 'x' + std::to_string(area.height) + '+' + std::to_string(area.x) +
                    '+' + std::to_string(area.y));
  }
  return texts;
}

PicturePointer plainPicture(int width, int height, Pixel pixel) {
  const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  return std::make_shared<const Picture>(Picture{width, height, std::vector<Pixel>(count, pixel)});
}

TEST(Changes, AreTheWholeImageAtFirst) {
  Surface surface;
  surface.resize(40, 10);
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"40x8+0+0", "40x2+0+8"}));
  EXPECT_TRUE(textsOf(surface.takeChanges()).empty());
}

TEST(Changes, AreTheTilesDrawnOnNowOrBefore) {
  Surface surface;
  surface.resize(200, 80);
  surface.takeChanges();
  surface.Circle(20 * 15, 20 * 15, 2 * 15, RGB(255, 255, 255));
  surface.FillColor = surface.ForeColor = RGB(255, 255, 255);
  surface.Line(100 * 15, 3 * 15, 120 * 15, 3 * 15);
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"32x8+96+0", "16x8+16+16"}));
  surface.Cls();
  surface.Line(0, 70 * 15, 5 * 15, 70 * 15);
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"32x8+96+0", "16x8+16+16", "16x8+0+64"}));
  surface.Cls();
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"16x8+0+64"}));
  EXPECT_TRUE(textsOf(surface.takeChanges()).empty());
}

TEST(Changes, IncludeParticles) {
  Surface surface;
  surface.resize(200, 80);
  surface.takeChanges();
  surface.FillColor = RGB(255, 255, 255);
  surface.Circle(20 * 15, 20 * 15, 15, RGB(255, 255, 255));
  surface.Circle(47 * 15, 23 * 15, 30, RGB(255, 255, 255));  // reaches into three more tiles
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"48x8+16+16", "32x8+32+24"}));
  surface.Cls();
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"48x8+16+16", "32x8+32+24"}));
}

TEST(Changes, IncludeThePictureBehindTheDrawing) {
  Surface surface;
  surface.resize(20, 8);
  surface.takeChanges();
  surface.BackColor = RGB(1, 2, 3);
  EXPECT_TRUE(textsOf(surface.takeChanges()).empty()) << "until the next Cls";
  surface.Cls();
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"20x8+0+0"}));
  surface.setBackground(plainPicture(30, 30, 0x123456));
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"20x8+0+0"}));
  surface.setBackground(nullptr);
  EXPECT_EQ(textsOf(surface.takeChanges()), (Texts{"20x8+0+0"}));
}

// A copy of the image that only takes over the changes.
TEST(Changes, KeepACopyEqualToTheImage) {
  std::mt19937 random(7);
  const auto draw = [&](int least, int most) { return std::uniform_int_distribution<int>(least, most)(random); };
  const auto place = [&](int size) { return static_cast<float>(draw(-20, size + 20) * 15); };
  const auto colour = [&] { return RGB(draw(0, 255), draw(0, 255), draw(0, 255)); };
  Surface surface;
  std::vector<Pixel> copy;
  constexpr int steps = hasShortTests ? 5'000 : 20'000;
  for (int run = 0; run < steps; ++run) {
    const int width = surface.pixelWidth();
    const int height = surface.pixelHeight();
    switch (run == 0 ? 8 : draw(0, run % 300 == 0 ? 8 : 5)) {
      case 0:
        surface.ForeColor = colour();
        surface.DrawWidth = draw(1, 6);
        surface.Line(place(width), place(height), place(width), place(height));
        break;
      case 1:
      case 2:
        surface.FillColor = colour();
        surface.Circle(place(width), place(height), static_cast<float>(draw(0, 4) * 15), surface.FillColor);
        break;
      case 3:
        surface.PaintPicture(*plainPicture(9, 7, 0x00FFCC), place(width), place(height), 9 * 15, 7 * 15, 0, 0, SRCCOPY);
        break;
      case 4:
        surface.Cls();
        break;
      case 5:
        for (const PixelArea& area : surface.takeChanges()) {
          for (int row = area.y; row < area.y + area.height; ++row) {
            const auto from = surface.pixels().begin() + row * width + area.x;
            std::copy_n(from, area.width, copy.begin() + row * width + area.x);
          }
        }
        ASSERT_EQ(copy, pixelsOf(surface)) << "run " << run;
        break;
      case 6:
        surface.BackColor = colour();
        break;
      case 7:
        switch (draw(0, 2)) {
          case 0:
            surface.setBackground(nullptr);
            break;
          case 1:
            surface.setBackground(plainPicture(width, height, 0x112233));
            break;
          default:
            surface.setBackground(plainPicture(draw(1, 300), draw(1, 100), 0x445566));
        }
        break;
      default:
        surface.resize(draw(1, 1200), draw(1, 90));
        copy.assign(surface.pixels().size(), 0xBADBAD);
    }
  }
}

}  // namespace
}  // namespace kelvora
