#include <gtest/gtest.h>

#include "frontend/console.h"
#include "frontend/fontMan.h"
#include "rendering/layers.h"
#include "tests/rendering/paintTest.h"

// Characters as wide as the font's size in pixels, so that a text's width reveals its size.
namespace kelvora {
namespace {

class SizedBlocks : public GlyphSource {
 public:
  Glyph glyph(const FontSpec& font, unsigned char) override {
    const int width = static_cast<int>(font.size);
    return {0, 0, width, 10, width, std::vector<std::uint8_t>(static_cast<std::size_t>(width) * 10, 255)};
  }
  int lineHeight(const FontSpec&) override { return 14; }
};

class MessageText : public PaintTest {
 protected:
  MessageText() {
    Surface::setGlyphSource(&blocks);
    canvas().BackColor = RGB(0, 0, 0);
    canvas().Cls();
  }
  ~MessageText() override { Surface::setGlyphSource(nullptr); }
  SizedBlocks blocks;
};

TEST_F(MessageText, DebugTextHasTheCanvasFontSize) {
  canvas().FontSize = 11;
  modMain::world.chatLines[6] = {"x", RGB(255, 255, 255), 16};
  modMain::world.debugText = "xx\r\n";
  modMain::paintTextLines();
  EXPECT_EQ(pixelAt(canvas(), 4 + 21, 0), RGB(0, 255, 255));
  EXPECT_EQ(pixelAt(canvas(), 4 + 22, 0), Colour{}) << "two characters of 11";
}

TEST_F(MessageText, TheCentreMessageIsMeasuredInTheLabelsFont) {
  canvas().FontSize = 20;
  const double label = 15.0 * 4 * static_cast<int>(frmMain->lblTmp.design.font.size);
  ASSERT_NE(frmMain->lblTmp.design.font.size, 20);
  modMain::showCentreMessage("abcd");
  modMain::paintCentreMessage();
  const int left = toPixels((11445 - label) / 2.3);
  EXPECT_EQ(pixelAt(canvas(), left, 271), RGB(0, 254, 0));
  EXPECT_EQ(pixelAt(canvas(), left - 1, 271), Colour{});
  EXPECT_EQ(pixelAt(canvas(), left + 4 * 23 - 1, 271), RGB(0, 254, 0)) << "printed three points above the canvas's";
  EXPECT_EQ(pixelAt(canvas(), left + 4 * 23, 271), Colour{});
}

TEST_F(MessageText, Q264AColourOfBlackIsPaintedGrey) {
  for (std::uint8_t channel = 0; channel < 3; ++channel) fontMan::setFontColour(0, channel, 0);
  printChat("x", LineType::PublicChat);
  EXPECT_EQ(modMain::world.chatLines[0].colour, Colour{});
  modMain::paintTextLines();
  EXPECT_EQ(pixelAt(canvas(), 60.0, 8720.0), RGB(50, 50, 50));
}

}  // namespace
}  // namespace kelvora
