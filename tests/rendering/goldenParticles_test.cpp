#include <gtest/gtest.h>

#include <array>

#include "tests/rendering/goldenPainting.h"

namespace kelvora {
namespace {

class GoldenParticles : public GoldenPainting {
 protected:
  /// A background particle that appears at a pixel after the shift.
  void paintBackgroundAt(int column, int row, std::int16_t depth, Colour colour = {}) {
    const double pull = depth * 0.05;
    clsParticle particle;
    particle.depth = depth;
    particle.red = colour.red;
    particle.green = colour.green;
    particle.blue = colour.blue;
    particle.position = {static_cast<float>(50000 - 5722 + (column * 15 - pull * 5722.5) / (1 - pull)),
                         static_cast<float>(50000 - 4560 + (row * 15 - pull * 4560) / (1 - pull))};
    particle.paintSelf();
  }
  /// Paints the eleven balls in a row. The first one's upper left pixel is (200, 200).
  void paintBalls(ParticleType type, bool blink) {
    for (int kind = 0; kind < 11; ++kind) {
      clsParticle particle;
      particle.type = type;
      particle.kind = static_cast<std::uint8_t>(kind);
      particle.blink = blink;
      particle.position = worldAt(200 + 21 * (kind + 1), 221);
      particle.paintSelf();
    }
  }
  static constexpr Part balls{200, 200, 231, 21};
};

TEST_F(GoldenParticles, StarsOfEachDepth) {
  for (std::int16_t depth = 1; depth <= 16; ++depth) paintBackgroundAt(300 + 10 * (depth - 1), 300, depth);
  // Radius 29 twips is 2 pixels: a square of 5 without its corners. Radius 14 is 1 pixel: a whole square of 3, because
  // its corners at 1.41 are within 1.5.
  EXPECT_EQ(countPixels(canvas(), RGB(190, 190, 190)), 21);
  EXPECT_EQ(countPixels(canvas(), RGB(40, 40, 40)), 9);
  EXPECT_EQ(pixelAt(canvas(), 300, 300), RGB(190, 190, 190));
  EXPECT_EQ(pixelAt(canvas(), 450, 300), RGB(40, 40, 40));
  expectGolden("stars", canvas(), {295, 295, 161, 11});
}

TEST_F(GoldenParticles, QuarksOfEachDepth) {
  frmMain->mnuQuarkStars.Checked = false;
  const std::array<Colour, 4> colours{RGB(255, 128, 0), RGB(0, 254, 254), RGB(100, 200, 160), RGB(160, 160, 160)};
  for (int row = 0; row < 4; ++row) {
    for (std::int16_t depth = 1; depth <= 16; ++depth) {
      paintBackgroundAt(300 + 10 * (depth - 1), 300 + 10 * row, depth, colours[static_cast<std::size_t>(row)]);
    }
  }
  EXPECT_EQ(pixelAt(canvas(), 300, 300), RGB(245, 118, 0));
  EXPECT_EQ(pixelAt(canvas(), 450, 300), RGB(95, 0, 0));
  EXPECT_EQ(pixelAt(canvas(), 400, 320), RGB(0, 90, 50)) << "depth 11";
  EXPECT_EQ(pixelAt(canvas(), 450, 330), Colour{}) << "160 at depth 16";
  expectGolden("quarks", canvas(), {295, 295, 161, 41});
}

TEST_F(GoldenParticles, TheElevenBalls) {
  const Colour under = RGB(96, 96, 160);
  clearTo(under);
  paintBalls(ParticleType::Network, false);
  for (int kind = 0; kind < 11; ++kind) {
    const Colour ball = sheetPixel(frmGfx->imgBalls, 21 * kind + 10, 10);
    EXPECT_EQ(pixelAt(canvas(), 200 + 21 * kind + 10, 210), ball) << "its middle covers the background";
  }
  EXPECT_EQ(pixelAt(canvas(), 200, 200), under) << "its corner shows it";
  expectGolden("balls", canvas(), balls);
}

TEST_F(GoldenParticles, ExplosionsAsTheyBlinkAtMidnight) {
  machine.seconds = 0;
  const Colour under = RGB(96, 96, 160);
  std::vector<Picture> looks;
  for (const bool blink : {false, true}) {  // toggled before it is used
    clearTo(under);
    paintBalls(ParticleType::Explosion, blink);
    looks.push_back(cropped(canvas(), balls));
  }
  const Colour image = sheetPixel(frmGfx->imgBalls, 10, 10);
  const Colour matte = sheetPixel(frmGfx->imgBallMatte, 10, 10);
  EXPECT_EQ(pixelAt(canvas(), 210, 210), laidExchanged(under, matte, image));
  EXPECT_EQ(pixelAt(canvas(), 200, 200), Colour{}) << "reversed, the corner is black";
  expectGolden("explosions", sideBySide(looks, 1));
}

}  // namespace
}  // namespace kelvora
