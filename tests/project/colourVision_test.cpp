#include "tests/project/colourVision.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/project/sheets.h"

using namespace kelvora;
using namespace colourVision;
using namespace sheets;

namespace {

constexpr std::array eyeNames = {"ordinary", "without long", "without middle", "without short"};
constexpr std::array colourNames = {"red", "yellow", "green", "cyan", "blue", "purple"};

/// Something drawn in the six player colours, and the part of its cell that it fills.
struct Coloured {
  std::string name;
  std::array<Picture, 6> pictures;
  Picture matte;
};

Coloured coloured(const std::string& name, const Picture& matte, const std::function<Picture(int)>& draw) {
  Coloured result{name, {}, matte};
  for (int colour = 0; colour < 6; ++colour) result.pictures.at(static_cast<std::size_t>(colour)) = draw(colour);
  return result;
}

/// Pixels that are black in all six pictures count as outside.
Picture matteOf(const std::function<Picture(int)>& draw) {
  Picture matte = draw(0);
  for (Pixel& pixel : matte.pixels) pixel = whitePixel;
  for (int colour = 0; colour < 6; ++colour) {
    const Picture picture = draw(colour);
    for (std::size_t i = 0; i < matte.pixels.size(); ++i)
      if (picture.pixels[i] != blackPixel) matte.pixels[i] = blackPixel;
  }
  return matte;
}

Coloured ball(int frame) {
  return coloured("ball " + std::to_string(frame), cell(*load("playerMatte"), frame * 735, 0, 735, 735),
                  [frame](int c) { return cell(*load("player" + std::to_string(c)), frame * 735, 0, 735, 735); });
}

Coloured edgeArrow(int frame) {
  return coloured(
      "edge arrow " + std::to_string(frame), cell(*load("opponentArrowMatte"), frame * 270, 0, 270, 270),
      [frame](int c) { return cell(*load("opponentArrow" + std::to_string(c)), frame * 270, 0, 270, 270); });
}

std::vector<Coloured> everythingColoured() {
  std::vector<Coloured> result;
  for (int frame = 0; frame < 4; ++frame) result.push_back(ball(frame));
  for (int frame = 0; frame < 8; ++frame) result.push_back(edgeArrow(frame));
  const auto blip = [](int c) { return cell(*load("radarBlips"), c * 960.0 / 7, 0, 960.0 / 7, 135); };
  result.push_back(coloured("radar dot", blip(6), blip));
  const auto cap = [](int c) { return cell(*load("caps"), c * 162.5, 0, 150, 165); };
  result.push_back(coloured("capture mark", matteOf(cap), cap));
  const auto swatch = [](int c) { return *load("userColor" + std::to_string(c)); };
  result.push_back(coloured("swatch", matteOf(swatch), swatch));
  return result;
}

/// The colours of the pixels inside the shape, as this eye sees them.
std::vector<Triple> seen(const Picture& picture, const Picture& matte, Eye eye) {
  std::vector<Triple> result;
  for (std::size_t i = 0; i < picture.pixels.size(); ++i) {
    const Pixel pixel = picture.pixels[i];
    if (matte.pixels[i] != whitePixel) result.push_back(labOf(red(pixel), green(pixel), blue(pixel), eye));
  }
  return result;
}

/// The mean distance between pixels at the same position: hue, lightness and sign combined.
double apart(const std::vector<Triple>& a, const std::vector<Triple>& b) {
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += distance(a[i], b[i]);
  return sum / static_cast<double>(a.size());
}

double meanLightness(const std::vector<Triple>& pixels) {
  double sum = 0;
  for (const Triple& pixel : pixels) sum += pixel[0];
  return sum / static_cast<double>(pixels.size());
}

/// The mean difference in lightness at the same position after equalising the overall lightness, so only the signs
/// count.
double signsApart(const std::vector<Triple>& a, const std::vector<Triple>& b) {
  const double shift = meanLightness(a) - meanLightness(b);
  double sum = 0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += std::fabs(a[i][0] - b[i][0] - shift);
  return sum / static_cast<double>(a.size());
}

void expectApart(const Coloured& thing, Eye eye, double least,
                 double (*measure)(const std::vector<Triple>&, const std::vector<Triple>&)) {
  std::vector<std::vector<Triple>> views;
  for (const Picture& picture : thing.pictures) views.push_back(seen(picture, thing.matte, eye));
  for (std::size_t a = 0; a < 6; ++a)
    for (std::size_t b = 0; b < a; ++b)
      EXPECT_GE(measure(views[a], views[b]), least)
          << thing.name << ", " << colourNames.at(a) << " and " << colourNames.at(b) << ", "
          << eyeNames.at(static_cast<std::size_t>(eye));
}

TEST(ColourVision, WhiteIsWhiteToEveryEye) {
  for (const Eye eye : eyes) {
    const Triple lab = labOf(255, 255, 255, eye);
    EXPECT_NEAR(lab[0], 100, 0.1);
    EXPECT_NEAR(lab[1], 0, 0.1);
    EXPECT_NEAR(lab[2], 0, 0.1);
  }
}

TEST(ColourVision, PureRedHasItsPublishedCoordinates) {
  // sRGB red in CIE L*a*b* under D65: 53.24, 80.09, 67.20.
  EXPECT_LT(distance(labOf(255, 0, 0, Eye::ordinary), {53.24, 80.09, 67.20}), 0.5);
}

TEST(ColourVision, EachEyeLosesTheDifferenceItIsKnownToLose) {
  // Pairs that ordinary eyes tell apart easily, but eyes without one kind of cones hardly at all.
  const auto pair = [](Eye eye, const Triple& a, const Triple& b) {
    return distance(labOf(a[0], a[1], a[2], eye), labOf(b[0], b[1], b[2], eye));
  };
  const Triple brick{180, 60, 40};
  const Triple olive{110, 110, 30};
  EXPECT_LT(pair(Eye::withoutMiddle, brick, olive), 0.4 * pair(Eye::ordinary, brick, olive));
  const Triple crimson{160, 20, 60};
  const Triple moss{55, 60, 60};
  EXPECT_LT(pair(Eye::withoutLong, crimson, moss), 0.4 * pair(Eye::ordinary, crimson, moss));
  const Triple sky{80, 170, 230};
  const Triple sea{60, 180, 150};
  EXPECT_LT(pair(Eye::withoutShort, sky, sea), 0.4 * pair(Eye::ordinary, sky, sea));
}

TEST(ColourVision, OrdinaryEyesTellThePlayersApartAtAGlance) {
  for (const Coloured& thing : everythingColoured()) expectApart(thing, Eye::ordinary, 12 * justNoticed, apart);
}

TEST(ColourVision, ColourBlindEyesTellThePlayersApart) {
  for (const Coloured& thing : everythingColoured())
    for (const Eye eye : {Eye::withoutLong, Eye::withoutMiddle, Eye::withoutShort})
      expectApart(thing, eye, 6 * justNoticed, apart);
}

/// The middle of a ball, which has its sign: within 9 pixels of the centre.
Picture middleOf(const Picture& matte) {
  Picture result = matte;
  for (int y = 0; y < matte.height; ++y)
    for (int x = 0; x < matte.width; ++x)
      if (std::hypot(x + 0.5 - matte.width / 2.0, y + 0.5 - matte.height / 2.0) > 9)
        result.pixels.at(static_cast<std::size_t>(y * matte.width + x)) = whitePixel;
  return result;
}

TEST(ColourVision, TheSignsOfTheBallsDifferInAnyColour) {
  for (int frame = 0; frame < 4; ++frame) {
    Coloured middle = ball(frame);
    middle.matte = middleOf(middle.matte);
    for (const Eye eye : eyes) expectApart(middle, eye, 4 * justNoticed, signsApart);
  }
}

TEST(ColourVision, TheSignsOfSmallThingsStillDiffer) {
  for (const Coloured& thing : everythingColoured())
    for (const Eye eye : eyes) expectApart(thing, eye, justNoticed, signsApart);
}

}  // namespace
