#include <gtest/gtest.h>

#include <set>

#include "tests/project/sheets.h"

using namespace kelvora;
using namespace sheets;

namespace {

constexpr std::array<Pixel, 6> fullColours = {0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF, 0x0000FF, 0xFF00FF};

/// A sprite painted over one colour, matte first.
Picture living(const Picture& matte, const Picture& image, Pixel under) {
  Picture result = image;
  for (std::size_t i = 0; i < result.pixels.size(); ++i) result.pixels[i] |= under & matte.pixels[i];
  return result;
}
/// The same with the raster operations exchanged.
Picture ghost(const Picture& matte, const Picture& image, Pixel under) {
  Picture result = image;
  for (std::size_t i = 0; i < result.pixels.size(); ++i) result.pixels[i] &= under | matte.pixels[i];
  return result;
}

double strongest(Pixel pixel) { return std::max({red(pixel), green(pixel), blue(pixel)}); }

struct Polar {
  double distance;
  double degrees;
};
/// The position of a picture's pixel relative to its centre.
Polar polar(const Picture& picture, std::size_t index) {
  const auto width = static_cast<std::size_t>(picture.width);
  const double x = static_cast<double>(index % width) + 0.5 - picture.width / 2.0;
  const double y = static_cast<double>(index / width) + 0.5 - picture.height / 2.0;
  return {std::hypot(x, y), std::atan2(y, x) * 180 / std::numbers::pi + 180};
}

/// The appearance of the pixels that are clearly visible on black.
struct Ring {
  int count = 0;
  double nearest = 1000;
  double farthest = 0;
  std::set<int> sectors;  // of 10 degrees
  double hue = 0;
};

Ring ringOf(const Picture& picture, const Picture& matte) {
  Ring ring;
  Picture seen = picture;
  for (std::size_t i = 0; i < seen.pixels.size(); ++i) {
    const bool isGrey = matte.pixels[i] != blackPixel && matte.pixels[i] != whitePixel;
    if (!isGrey || strongest(seen.pixels[i]) < 96) {
      seen.pixels[i] = blackPixel;
      continue;
    }
    const auto [distance, degrees] = polar(seen, i);
    ++ring.count;
    ring.nearest = std::min(ring.nearest, distance);
    ring.farthest = std::max(ring.farthest, distance);
    ring.sectors.insert(static_cast<int>(degrees / 10) % 36);
  }
  ring.hue = meanHue(seen);
  return ring;
}

/// Calls `check` with the colour number, the frame, matte and image of every ball.
template <class Check>
void forEveryBall(Check check) {
  for (int frame = 0; frame < 4; ++frame)
    for (int colour = 0; colour < 6; ++colour) {
      SCOPED_TRACE(numbered("player", colour) + " frame " + std::to_string(frame));
      check(colour, frame, playerCell("playerMatte", frame), playerCell(numbered("player", colour), frame));
    }
}

constexpr std::array ballRadii = {17.0, 17.5, 18.1, 18.8};  // by frame, pixels

/// True if a hue is nearer to this player's than to any other's.
bool isOwnHue(double hue, int colour) {
  const auto nearest =
      std::ranges::min_element(playerHues, {}, [hue](double playerHue) { return hueDistance(hue, playerHue); });
  return nearest - playerHues.begin() == colour;
}

// A ring two pixels wide around the smallest ball has 2 * 2 * pi * 17 = 214 pixels. One three pixels wide around the
// largest has 354.
void expectRing(const Ring& ring, int colour, int frame) {
  const double radius = ballRadii.at(static_cast<std::size_t>(frame));
  EXPECT_GE(ring.count, 200);
  EXPECT_LE(ring.count, 354);
  EXPECT_EQ(ring.sectors.size(), 36U);
  EXPECT_GE(ring.nearest, radius - 3);
  EXPECT_LE(ring.farthest, radius + 1.5);
  EXPECT_TRUE(isOwnHue(ring.hue, colour)) << ring.hue << " degrees";
}

TEST(Ghosts, AreAClearRingInThePlayersColourOnBlack) {
  forEveryBall([](int colour, int frame, const Picture& matte, const Picture& image) {
    const Picture picture = ghost(matte, image, blackPixel);
    const Ring ring = ringOf(picture, matte);
    expectRing(ring, colour, frame);
    EXPECT_LE(hueDistance(ring.hue, playerHues.at(static_cast<std::size_t>(colour))), hueTolerance);
    for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
      if (matte.pixels[i] == blackPixel || matte.pixels[i] == whitePixel) {
        ASSERT_EQ(picture.pixels[i], blackPixel) << "only the ring should be visible, not pixel " << i;
      }
    }
  });
}

TEST(Ghosts, KeepTheirRingOverATailOfAnyColour) {
  forEveryBall([](int colour, int frame, const Picture& matte, const Picture& image) {
    for (const Pixel tail : fullColours) expectRing(ringOf(ghost(matte, image, tail), matte), colour, frame);
  });
}

TEST(Ghosts, BlinkingParticlesAreRingsToo) {
  const Picture matte = *load("ballMatte");
  for (int kind = 0; kind < 11; ++kind) {
    const Ring ring = ringOf(ghost(matte, ballCell(kind), blackPixel), matte);
    EXPECT_GE(ring.count, 60) << kind;  // radius 8.2: 52 pixels for each pixel of width
    EXPECT_LE(ring.count, 155) << kind;
    EXPECT_EQ(ring.sectors.size(), 36U) << kind;
    EXPECT_GE(ring.nearest, 5.5) << kind;
    EXPECT_LE(hueDistance(ring.hue, particleHues.at(static_cast<std::size_t>(kind))), hueTolerance) << kind;
  }
}

TEST(Ghosts, GreysKeepOnlyLeadingBitsOfTheImage) {
  for (const char* name : {"playerMatte", "ballMatte"}) {
    const std::set<Pixel> allowed = {blackPixel, 0x808080, 0xC0C0C0, 0xF0F0F0, whitePixel};
    const auto matte = load(name);
    for (const Pixel pixel : matte->pixels) ASSERT_TRUE(allowed.contains(pixel)) << name << " " << pixel;
  }
}

TEST(LivingBalls, HideTheBackgroundExceptAtTheirRims) {
  forEveryBall([](int, int frame, const Picture& matte, const Picture& image) {
    const double radius = ballRadii.at(static_cast<std::size_t>(frame));
    EXPECT_EQ(living(matte, image, blackPixel).pixels, image.pixels);
    const Picture onWhite = living(matte, image, whitePixel);
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
      const double distance = polar(image, i).distance;
      const bool isRim = distance > radius - 3 && distance < radius + 1.5;
      if (matte.pixels[i] != whitePixel && !isRim) {
        ASSERT_EQ(onWhite.pixels[i], image.pixels[i]) << "pixel " << i;
      }
    }
  });
}

TEST(LivingBalls, LookLikeBallsWithoutLightInTheirRims) {
  // The balls as drawn before they had rims, one row per colour.
  const auto plain = loadPictureFile(std::string(KELVORA_SOURCE_DIR) + "/tests/golden/ballsWithoutRims.png");
  forEveryBall([&](int colour, int frame, const Picture&, const Picture& image) {
    const Picture before = cell(*plain, frame * 735, colour * 735, 735, 735);
    const double radius = ballRadii.at(static_cast<std::size_t>(frame));
    double change = 0;
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
      const Pixel a = image.pixels[i];
      const Pixel b = before.pixels[i];
      if (polar(image, i).distance < radius - 3.5) {
        ASSERT_EQ(a, b) << "pixel " << i;
      }
      for (const double part : {red(a) - red(b), green(a) - green(b), blue(a) - blue(b)}) {
        EXPECT_LE(std::fabs(part), 100) << "pixel " << i;
        change += std::fabs(part);
      }
    }
    EXPECT_LE(change / (3.0 * static_cast<double>(image.pixels.size())), 2.5) << "of 255, on average";
  });
}

}  // namespace
