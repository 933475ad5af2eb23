#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "frontend/console.h"
#include "frontend/fontMan.h"
#include "rendering/actionIcons.h"
#include "rendering/layers.h"
#include "tests/rendering/goldenPainting.h"

namespace kelvora {
namespace {

class GoldenTexts : public GoldenPainting {
 protected:
  static constexpr Part console{0, 418, 200, 190};
};

TEST_F(GoldenTexts, ConsoleLinesOfEachTypeAndAge) {
  std::vector<Picture> pictures;
  for (const bool isReversed : {false, true}) {
    canvas().Cls();
    for (std::int16_t i = 0; i < 7; ++i) {
      const auto type = static_cast<std::int16_t>(isReversed ? 6 - i : i);
      printChat("Type " + std::to_string(type) + " age " + std::to_string(6 - i), LineType{type});
    }
    modMain::paintTextLines();
    pictures.push_back(cropped(canvas(), console));
  }
  // Type 3, yellow, is now line 3, darkened three times by 30: at 9120 - 4 * 400 = 7520, row 501. The bar of the T
  // starts at column 4, one pixel (an eighth of the size of 12) lower.
  EXPECT_EQ(pixelAt(canvas(), 4, 502), RGB(165, 165, 0));
  EXPECT_EQ(pixelAt(canvas(), 4, 501), Colour{});
  // Type 6, white, is the oldest: 9120 - 7 * 400 = 6320, row 421.
  EXPECT_EQ(pixelAt(canvas(), 4, 422), RGB(75, 75, 75));
  expectGolden("console", sideBySide(pictures, 2));
}

TEST_F(GoldenTexts, TheCentreMessageAtSeveralAges) {
  std::vector<Picture> pictures;
  modMain::showCentreMessage("Bob caught Ann!");
  for (const std::int16_t age : std::to_array<std::int16_t>({1, 64, 128, 200, 250, 251})) {
    canvas().Cls();
    modMain::world.centreMessageAge = static_cast<std::int16_t>(age - 1);
    modMain::paintCentreMessage();
    pictures.push_back(cropped(canvas(), {260, 265, 190, 26}));
    const int inked = 763 * 608 - countPixels(canvas(), {});
    EXPECT_EQ(countPixels(canvas(), RGB(0, 255 - age, 0)), age <= 250 ? inked : 0) << "one colour alone";
    EXPECT_EQ(inked > 300, age <= 250) << age;
  }
  expectGolden("centreMessage", sideBySide(pictures, 1));
}

TEST_F(GoldenTexts, TheIconsWithTheirNumbers) {
  clsPlayer& player = modMain::world.localPlayer;
  for (std::size_t i = 0; i < 6; ++i) player.powerups[i].count = static_cast<std::int16_t>(i == 5 ? 12 : i);
  const Colour under = RGB(40, 40, 40);
  clearTo(under);
  modMain::paintActionIcons();
  player.paintSelf();
  // The first icon at (7455, 7620), pixel (497, 508).
  EXPECT_EQ(pixelAt(canvas(), 497 + 20, 508 + 20),
            laid(under, sheetPixel(frmGfx->imgAction[0], 20, 20), sheetPixel(frmGfx->imgAction[1], 20, 20)));
  expectGolden("icons", canvas(), {490, 500, 273, 80});
}

}  // namespace
}  // namespace kelvora
