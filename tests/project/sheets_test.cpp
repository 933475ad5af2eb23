#include "tests/project/sheets.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>

using namespace kelvora;
using namespace sheets;

namespace {

struct Size {
  const char* name;
  int width;
  int height;
};

constexpr std::array sizes = {
    Size{"player0", 196, 49},
    Size{"player1", 196, 49},
    Size{"player2", 196, 49},
    Size{"player3", 196, 49},
    Size{"player4", 196, 49},
    Size{"player5", 196, 49},
    Size{"playerMatte", 196, 49},
    Size{"shield", 196, 98},
    Size{"opponentArrow0", 144, 18},
    Size{"opponentArrow1", 144, 18},
    Size{"opponentArrow2", 144, 18},
    Size{"opponentArrow3", 144, 18},
    Size{"opponentArrow4", 144, 18},
    Size{"opponentArrow5", 144, 18},
    Size{"opponentArrowMatte", 144, 18},
    Size{"balls", 231, 21},
    Size{"ballMatte", 21, 21},
    Size{"arrows", 294, 49},
    Size{"radarBlips", 64, 9},
    Size{"caps", 65, 11},
    Size{"action0", 41, 42},
    Size{"action1", 41, 42},
    Size{"action2", 41, 42},
    Size{"action3", 41, 42},
    Size{"action4", 41, 42},
    Size{"action5", 41, 42},
    Size{"action6", 41, 42},
    Size{"btnPlay0", 98, 40},
    Size{"btnPlay1", 98, 40},
    Size{"btnStore0", 98, 40},
    Size{"btnStore1", 98, 40},
    Size{"null", 32, 32},
    Size{"radarGrid", 117, 93},
    Size{"userColor0", 21, 21},
    Size{"userColor1", 21, 21},
    Size{"userColor2", 21, 21},
    Size{"userColor3", 21, 21},
    Size{"userColor4", 21, 21},
    Size{"userColor5", 21, 21},
    Size{"store", 761, 606},
    Size{"storeItem0", 57, 57},
    Size{"storeItem1", 57, 57},
    Size{"storeItem2", 57, 57},
    Size{"storeItem3", 57, 57},
    Size{"storeItem4", 57, 57},
    Size{"storeItem5", 57, 57},
};

// Cells as the paint code cuts them out, in twips.
Picture shieldCell(int frame, int row) { return cell(*load("shield"), frame * 735, row * 735, 735, 735); }
Picture edgeCell(const std::string& name, int frame) { return cell(*load(name), frame * 270, 0, 270, 270); }
Picture pointerCell(int frame, int row) { return cell(*load("arrows"), frame * 367, row * 367, 367, 367); }
Picture blipCell(int index) { return cell(*load("radarBlips"), index * 960.0 / 7, 0, 960.0 / 7, 135); }
Picture capCell(int colour) { return cell(*load("caps"), colour * 162.5, 0, 162.5, 165); }

struct Sprite {
  std::string name;
  Picture matte;
  Picture image;
};

/// Every sprite painted with a matte and an image.
std::vector<Sprite> allSprites() {
  std::vector<Sprite> result;
  for (int frame = 0; frame < 4; ++frame) {
    for (int colour = 0; colour < 6; ++colour)
      result.push_back({numbered("player", colour) + " frame " + std::to_string(frame),
                        playerCell("playerMatte", frame), playerCell(numbered("player", colour), frame)});
    result.push_back({numbered("shield frame ", frame), shieldCell(frame, 1), shieldCell(frame, 0)});
  }
  for (int frame = 0; frame < 8; ++frame)
    for (int colour = 0; colour < 6; ++colour)
      result.push_back({numbered("edge arrow ", colour) + " frame " + std::to_string(frame),
                        edgeCell("opponentArrowMatte", frame), edgeCell(numbered("opponentArrow", colour), frame)});
  for (int kind = 0; kind < 11; ++kind) result.push_back({numbered("ball ", kind), *load("ballMatte"), ballCell(kind)});
  for (int frame = 0; frame < 12; ++frame)
    result.push_back({numbered("pointer ", frame), pointerCell(frame, 1), pointerCell(frame, 0)});
  for (int colour = 0; colour < 6; ++colour)
    result.push_back({numbered("radar dot ", colour), blipCell(6), blipCell(colour)});
  for (int icon = 1; icon <= 6; ++icon)
    result.push_back({numbered("action", icon), *load("action0"), *load(numbered("action", icon))});
  return result;
}

/// The mean difference, 0 to 255, between two pictures of the same size in greyscale.
double greyDistance(const Picture& a, const Picture& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i) sum += std::fabs(luma(a.pixels[i]) - luma(b.pixels[i]));
  return sum / static_cast<double>(a.pixels.size());
}

double meanLuma(const Picture& picture) {
  double sum = 0;
  for (const auto pixel : picture.pixels) sum += luma(pixel);
  return sum / static_cast<double>(picture.pixels.size());
}

/// The mean distance in the RGB cube (side 255) of the pixels that either picture covers.
double colourDistance(const Picture& a, const Picture& b) {
  double sum = 0;
  double count = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i) {
    if (a.pixels[i] == blackPixel && b.pixels[i] == blackPixel) continue;
    sum += std::hypot(red(a.pixels[i]) - red(b.pixels[i]), green(a.pixels[i]) - green(b.pixels[i]),
                      blue(a.pixels[i]) - blue(b.pixels[i]));
    ++count;
  }
  return sum / count;
}

TEST(Sheets, HaveTheSizesOfTheirControls) {
  for (const auto& size : sizes) {
    const auto picture = load(size.name);
    EXPECT_EQ(picture->width, size.width) << size.name;
    EXPECT_EQ(picture->height, size.height) << size.name;
  }
}

TEST(Sheets, AreTrueColourWithoutTransparency) {
  for (const auto& size : sizes) {
    std::ifstream file(std::string(KELVORA_SOURCE_DIR) + "/assets/" + size.name + ".png", std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    ASSERT_GT(bytes.size(), 26U) << size.name;
    EXPECT_EQ(bytes[24], 8) << size.name;  // bits per channel
    EXPECT_EQ(bytes[25], 2) << size.name;  // red, green and blue
  }
}

TEST(Sheets, MattesAreWhiteOutsideAndBlackInsideExceptForBallRims) {
  for (const auto& sprite : allSprites()) {
    const double inside = share(sprite.matte, blackPixel);
    const bool isBall = sprite.name.starts_with("player") || sprite.name.starts_with("ball");
    EXPECT_EQ(inside + share(sprite.matte, whitePixel) == 1.0, !isBall) << sprite.name;
    EXPECT_GT(inside, 0.15) << sprite.name;
    EXPECT_LT(inside, 0.98) << sprite.name;
    const int right = sprite.matte.width - 1;
    EXPECT_TRUE(at(sprite.matte, 0, 0) == whitePixel || at(sprite.matte, right, 0) == whitePixel) << sprite.name;
  }
}

TEST(Sheets, ImagesAreBlackOutsideTheirMattes) {
  for (const auto& sprite : allSprites()) {
    ASSERT_EQ(sprite.matte.pixels.size(), sprite.image.pixels.size()) << sprite.name;
    std::size_t rim = 0;
    for (std::size_t i = 0; i < sprite.image.pixels.size(); ++i)
      if (sprite.matte.pixels[i] == whitePixel && sprite.image.pixels[i] != blackPixel) ++rim;
    EXPECT_EQ(rim, 0U) << sprite.name;
  }
}

TEST(Sheets, ImagesFillMostOfTheirShape) {
  for (const auto& sprite : allSprites())
    EXPECT_GT(1 - share(sprite.image, blackPixel), 0.6 * share(sprite.matte, blackPixel)) << sprite.name;
}

TEST(Sheets, ColourNumbersHaveTheirHues) {
  for (int colour = 0; colour < 6; ++colour) {
    const double hue = playerHues.at(static_cast<std::size_t>(colour));
    const auto isNear = [&](const Picture& picture) { return hueDistance(meanHue(picture), hue) <= hueTolerance; };
    for (int frame = 0; frame < 4; ++frame)
      EXPECT_TRUE(isNear(playerCell(numbered("player", colour), frame))) << colour;
    for (int frame = 0; frame < 8; ++frame)
      EXPECT_TRUE(isNear(edgeCell(numbered("opponentArrow", colour), frame))) << colour;
    EXPECT_TRUE(isNear(blipCell(colour))) << colour;
    EXPECT_TRUE(isNear(capCell(colour))) << colour;
    EXPECT_TRUE(isNear(*load(numbered("userColor", colour)))) << colour;
  }
}

TEST(Sheets, BallsRunAroundTheColourCircle) {
  for (int kind = 0; kind < 11; ++kind)
    EXPECT_LE(hueDistance(meanHue(ballCell(kind)), particleHues.at(static_cast<std::size_t>(kind))), hueTolerance)
        << kind;
}

TEST(Sheets, PlayersDifferAtAGlance) {
  for (int a = 0; a < 6; ++a)
    for (int b = 0; b < a; ++b) {
      for (int frame = 0; frame < 4; ++frame)
        EXPECT_GE(colourDistance(playerCell(numbered("player", a), frame), playerCell(numbered("player", b), frame)),
                  60)
            << a << " and " << b;
      for (int frame = 0; frame < 8; ++frame)
        EXPECT_GE(colourDistance(edgeCell(numbered("opponentArrow", a), frame),
                                 edgeCell(numbered("opponentArrow", b), frame)),
                  60)
            << a << " and " << b;
      EXPECT_GE(colourDistance(blipCell(a), blipCell(b)), 60) << a << " and " << b;
      EXPECT_GE(colourDistance(capCell(a), capCell(b)), 60) << a << " and " << b;
    }
}

TEST(Sheets, PlayersDifferWithoutTheirHue) {
  for (int a = 0; a < 6; ++a)
    for (int b = 0; b < a; ++b) {
      EXPECT_GE(greyDistance(playerCell(numbered("player", a), 0), playerCell(numbered("player", b), 0)), 8)
          << a << " and " << b;
      EXPECT_GE(greyDistance(blipCell(a), blipCell(b)), 8) << a << " and " << b;
      EXPECT_GE(greyDistance(capCell(a), capCell(b)), 8) << a << " and " << b;
    }
}

TEST(Sheets, BallIsAnimated) {
  for (int colour = 0; colour < 6; ++colour)
    for (int frame = 1; frame < 4; ++frame) {
      const auto name = numbered("player", colour);
      const double change = greyDistance(playerCell(name, frame - 1), playerCell(name, frame));
      EXPECT_GE(change, 1) << name << " frame " << frame;
      EXPECT_LE(change, 25) << name << " frame " << frame;
    }
}

TEST(Sheets, TheShieldIsARingThatLeavesTheBallFree) {
  for (int frame = 0; frame < 4; ++frame) {
    const auto matte = shieldCell(frame, 1);
    EXPECT_EQ(at(matte, 24, 24), whitePixel);
    for (int offset = -16; offset <= 16; ++offset) EXPECT_EQ(at(matte, 24 + offset, 24), whitePixel) << offset;
    for (const auto& [x, y] : {std::pair{2, 24}, std::pair{46, 24}, std::pair{24, 2}, std::pair{24, 46}})
      EXPECT_EQ(at(matte, x, y), blackPixel) << x << ", " << y;
    EXPECT_EQ(at(matte, 0, 0), whitePixel);
  }
}

TEST(Sheets, PointerFramesRunClockwiseFromStraightUp) {
  // An arrowhead is narrow in front and wide at the back, so its centre of mass is behind its middle.
  for (int frame = 0; frame < 12; ++frame) {
    const auto matte = pointerCell(frame, 1);
    double x = 0;
    double y = 0;
    for (int row = 0; row < matte.height; ++row)
      for (int column = 0; column < matte.width; ++column)
        if (at(matte, column, row) == blackPixel) {
          x += column + 0.5 - 12;
          y += row + 0.5 - 12;
        }
    const double clockwise = std::atan2(-x, y) * 180 / std::numbers::pi;
    EXPECT_LE(hueDistance(clockwise < 0 ? clockwise + 360 : clockwise, frame * 30), 5) << frame;
  }
}

TEST(Sheets, NoPointerFrameCutsOffACorner) {
  const auto area = [](int frame) {
    const auto matte = pointerCell(frame, 1);
    return share(matte, blackPixel) * static_cast<double>(matte.pixels.size());
  };
  for (int frame = 1; frame < 12; ++frame) EXPECT_NEAR(area(frame), area(0), 0.02 * area(0)) << frame;
}

int countInside(const Picture& matte, int x, int y, int stepX, int stepY) {
  int count = 0;
  for (int i = 0; i < 18; ++i) count += at(matte, x + i * stepX, y + i * stepY) == blackPixel ? 1 : 0;
  return count;
}

TEST(Sheets, EdgeArrowsPointUpRightDownLeft) {
  // The tip is on the emptiest side of the cell, the shaft on the opposite one.
  struct Side {
    int x, y, stepX, stepY;
  };
  constexpr Side top{0, 0, 1, 0};
  constexpr Side bottom{0, 17, 1, 0};
  constexpr Side left{0, 0, 0, 1};
  constexpr Side right{17, 0, 0, 1};
  const auto on = [](const Picture& matte, const Side& side) {
    return countInside(matte, side.x, side.y, side.stepX, side.stepY);
  };
  constexpr std::array<std::pair<Side, Side>, 4> ends = {{{top, bottom}, {right, left}, {bottom, top}, {left, right}}};
  for (int frame = 0; frame < 4; ++frame) {
    const auto matte = edgeCell("opponentArrowMatte", frame);
    const auto& [tip, shaft] = ends.at(static_cast<std::size_t>(frame));
    EXPECT_GE(on(matte, tip), 1) << frame;
    EXPECT_LE(on(matte, tip), 3) << frame;
    EXPECT_GE(on(matte, shaft), 6) << frame;
  }
}

TEST(Sheets, EdgeArrowsPointToTheFourCorners) {
  // Up-left, up-right, down-left, down-right: the tip fills its corner, and the opposite one is empty.
  constexpr std::array<std::pair<int, int>, 4> corners = {{{1, 1}, {16, 1}, {1, 16}, {16, 16}}};
  for (int frame = 4; frame < 8; ++frame) {
    const auto matte = edgeCell("opponentArrowMatte", frame);
    const auto [x, y] = corners.at(static_cast<std::size_t>(frame - 4));
    EXPECT_EQ(at(matte, x, y), blackPixel) << frame;
    EXPECT_EQ(at(matte, 17 - x, 17 - y), whitePixel) << frame;
  }
}

TEST(Sheets, CaptureMarksDoNotReachIntoTheNextCell) {
  // Cells are 10 5/6 pixels apart and 11 wide: the fourth ends on the column where the fifth begins.
  const auto caps = load("caps");
  for (int row = 0; row < 11; ++row) EXPECT_EQ(at(*caps, 43, row), blackPixel) << row;
}

TEST(Sheets, TheRadarGridIsDimGreyOnBlackInAFrame) {
  const auto grid = load("radarGrid");
  const Pixel frame = at(*grid, 0, 0);
  EXPECT_GT(luma(frame), 80);
  for (int x = 0; x < 117; ++x) {
    EXPECT_EQ(at(*grid, x, 0), frame);
    EXPECT_EQ(at(*grid, x, 92), frame);
  }
  for (int y = 0; y < 93; ++y) {
    EXPECT_EQ(at(*grid, 0, y), frame);
    EXPECT_EQ(at(*grid, 116, y), frame);
  }
  for (const auto pixel : grid->pixels) {
    EXPECT_EQ(red(pixel), green(pixel));
    EXPECT_EQ(red(pixel), blue(pixel));
    EXPECT_LE(luma(pixel), luma(frame));
  }
  EXPECT_GT(share(*grid, blackPixel), 0.7);
}

TEST(Sheets, ButtonsAreGreyUntilLit) {
  for (const char* name : {"btnPlay", "btnStore"}) {
    const auto grey = load(numbered(name, 0));
    const auto lit = load(numbered(name, 1));
    for (const auto pixel : grey->pixels) {
      EXPECT_NEAR(red(pixel), green(pixel), 2) << name;
      EXPECT_NEAR(red(pixel), blue(pixel), 2) << name;
    }
    EXPECT_GT(meanLuma(*lit), 1.4 * meanLuma(*grey)) << name;
    EXPECT_EQ(at(*lit, 0, 0), blackPixel) << name;
  }
  EXPECT_GT(hueDistance(meanHue(*load("btnPlay1")), meanHue(*load("btnStore1"))), 40);
}

TEST(Sheets, IconsOfTheSixPowerupsDiffer) {
  for (int a = 1; a <= 6; ++a)
    for (int b = 1; b < a; ++b) {
      EXPECT_GE(colourDistance(*load(numbered("action", a)), *load(numbered("action", b))), 30) << a << " and " << b;
      EXPECT_GE(colourDistance(*load(numbered("storeItem", a - 1)), *load(numbered("storeItem", b - 1))), 30)
          << a << " and " << b;
    }
}

TEST(Sheets, TheNullIconIsBlank) { EXPECT_EQ(share(*load("null"), blackPixel), 1.0); }

TEST(Sheets, ApplicationIconHasTheUsualSizes) {
  for (const int size : {16, 32, 48, 64, 128, 256}) {
    const auto icon = load(numbered("icon-", size));
    EXPECT_EQ(icon->width, size);
    EXPECT_EQ(icon->height, size);
    EXPECT_EQ(at(*icon, 0, 0), blackPixel);  // an empty corner
    EXPECT_GT(red(at(*icon, size / 2, size * 3 / 5)), 100);
  }
}

TEST(Sheets, TheTitlePictureFillsTheCanvasAndShowsWhereToClick) {
  const auto logo = loadPictureFile(std::string(KELVORA_SOURCE_DIR) + "/kelvora.jpg");
  EXPECT_EQ(logo->width, 763);   // 11445 twips
  EXPECT_EQ(logo->height, 608);  // 9120 twips
  // The label that takes clicks is at 180, 5100 and measures 3555 by 975. The plate differs from what is to its right.
  const auto plate = cell(*logo, 180, 5100, 3555, 975);
  const auto above = cell(*logo, 180, 4650, 3555, 300);
  const auto below = cell(*logo, 180, 6150, 3555, 300);
  EXPECT_GT(meanLuma(plate), 4 * meanLuma(above));
  EXPECT_GT(meanLuma(plate), 4 * meanLuma(below));
}

}  // namespace
