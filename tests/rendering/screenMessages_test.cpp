#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "rendering/layers.h"
#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

class ScreenMessages : public PaintTest {
 protected:
  ScreenMessages() {
    Surface::setGlyphSource(&blocks);
    canvas().BackColor = RGB(0, 0, 0);
    canvas().Cls();
  }
  ~ScreenMessages() override { Surface::setGlyphSource(nullptr); }
  /// The first pixel of the line's first character; line 0 is the newest.
  Colour lineColour(int line) { return pixelAt(canvas(), 60.0, 9120 - 400.0 * (line + 1)); }
  void setLine(std::size_t index, Colour colour, std::int16_t size = 9) {
    modMain::world.chatLines[index] = {"xx", colour, size};
  }
  Blocks blocks;
};

TEST_F(ScreenMessages, SevenLinesAreStackedFromTheBottom) {
  for (std::size_t i = 0; i < 8; ++i) setLine(i, RGB(255, 255, 255));
  modMain::paintTextLines();
  for (int line = 0; line < 7; ++line) EXPECT_NE(lineColour(line), Colour{}) << line;
  EXPECT_EQ(lineColour(7), Colour{}) << "the eighth is not painted";
  // 9120 - 400 = 8720, row 581; 60 twips are pixel 4; two characters of 6.
  EXPECT_EQ(pixelAt(canvas(), 3, 581), Colour{});
  EXPECT_NE(pixelAt(canvas(), 4, 581), Colour{});
  EXPECT_NE(pixelAt(canvas(), 15, 590), Colour{});
  EXPECT_EQ(pixelAt(canvas(), 16, 590), Colour{});
  EXPECT_EQ(pixelAt(canvas(), 4, 580), Colour{});
}

TEST_F(ScreenMessages, ALineDarkensBy30WithEachStep) {
  for (std::size_t i = 0; i < 7; ++i) setLine(i, RGB(255, 255, 255));
  modMain::paintTextLines();
  for (int line = 0; line < 7; ++line) {
    const int grey = 255 - 30 * line;  // 75 for the last
    EXPECT_EQ(lineColour(line), RGB(grey, grey, grey)) << line;
  }
}

TEST_F(ScreenMessages, Q136AChannelAtOrBelowTheStepKeepsItsValue) {
  setLine(1, RGB(10, 200, 30));
  setLine(3, RGB(90, 91, 89));
  modMain::paintTextLines();
  EXPECT_EQ(lineColour(1), RGB(10, 170, 30));
  EXPECT_EQ(lineColour(3), RGB(90, 1, 89));
}

TEST_F(ScreenMessages, AnUnsetColourIsDarkGrey) {
  for (std::size_t i = 0; i < 3; ++i) setLine(i, {});
  modMain::paintTextLines();
  EXPECT_EQ(lineColour(0), RGB(50, 50, 50));
  EXPECT_EQ(lineColour(1), RGB(20, 20, 20));
  EXPECT_EQ(lineColour(2), RGB(50, 50, 50)) << "50 is not above 60";
}

TEST_F(ScreenMessages, MinimumSizeIsNine) {
  canvas().FontSize = 11;
  const std::int16_t sizes[] = {0, -4, 8, 9, 10, 14, 30};
  for (std::size_t i = 0; i < 7; ++i) setLine(i, RGB(255, 255, 255), sizes[i]);
  modMain::paintTextLines();
  EXPECT_EQ(std::vector<float>(blocks.sizes.begin(), blocks.sizes.begin() + 1), std::vector<float>{9});
  std::map<float, int> seen;
  for (const float size : blocks.sizes) ++seen[size];
  EXPECT_EQ(seen, (std::map<float, int>{{9, 1}, {10, 1}, {14, 1}, {30, 1}})) << "each glyph is taken once";
  EXPECT_EQ(canvas().FontSize, 11) << "as before";
}

TEST_F(ScreenMessages, ReportedSizeIsAWholeNumber) {
  canvas().FontSize = 9.75F;
  modMain::paintTextLines();
  EXPECT_EQ(canvas().FontSize, 10);
}

TEST_F(ScreenMessages, TheDebugTextRunsDownFromTheTopInCyan) {
  modMain::world.debugText.clear();
  modMain::addDebugText("one");
  modMain::addDebugText("two");
  EXPECT_EQ(modMain::world.debugText, "one\r\ntwo\r\n");
  modMain::paintTextLines();
  EXPECT_EQ(pixelAt(canvas(), 4, 0), cyan);
  EXPECT_EQ(pixelAt(canvas(), 4, 14), cyan);
  EXPECT_EQ(pixelAt(canvas(), 21, 23), cyan) << "18 pixels wide";
  EXPECT_EQ(pixelAt(canvas(), 22, 23), Colour{});
  EXPECT_EQ(pixelAt(canvas(), 4, 28), Colour{});
}

TEST_F(ScreenMessages, ShortCanvasCutsOffTheUpperLines) {
  canvas().Height = 1100;
  for (std::size_t i = 0; i < 7; ++i) setLine(i, RGB(255, 255, 255));
  modMain::world.debugText.clear();
  modMain::paintTextLines();
  EXPECT_NE(pixelAt(canvas(), 60.0, 700.0), Colour{});
  EXPECT_NE(pixelAt(canvas(), 60.0, 300.0), Colour{});
  // The third line from the bottom begins 7 pixels above the canvas: its last three rows are in sight.
  EXPECT_EQ(pixelAt(canvas(), 4, 2), RGB(195, 195, 195));
  EXPECT_EQ(pixelAt(canvas(), 4, 3), Colour{});
}

TEST_F(ScreenMessages, Q134TheCentreMessageIsLeftOfTheMiddle) {
  modMain::showCentreMessage("abcd");
  modMain::paintCentreMessage();
  // Four characters of 6 pixels are 360 twips by the label's font; (5722.5 - 360 + 5722.5) / 2.3 = 4819.57, pixel 321.
  // The row: 4560 - 500 = 4060, 271.
  const Colour fresh = RGB(0, 254, 0);
  EXPECT_EQ(pixelAt(canvas(), 321, 271), fresh);
  EXPECT_EQ(pixelAt(canvas(), 320, 271), Colour{});
  EXPECT_EQ(pixelAt(canvas(), 321, 270), Colour{});
  EXPECT_EQ(pixelAt(canvas(), 344, 280), fresh);
  EXPECT_EQ(pixelAt(canvas(), 345, 280), Colour{});
  EXPECT_EQ(frmMain->lblTmp.Caption.get(), "abcd");
}

TEST_F(ScreenMessages, TheCentreMessageIsThreePointsLarger) {
  canvas().FontSize = 9;
  frmMain->lblTmp.Caption = "x";
  modMain::showCentreMessage("x");
  modMain::paintCentreMessage();
  EXPECT_EQ(blocks.sizes, (std::vector<float>{12}));
  EXPECT_EQ(canvas().FontSize, 9);
}

TEST_F(ScreenMessages, TheCentreMessageFadesAndEnds) {
  modMain::showCentreMessage("abcd");
  modMain::paintCentreMessage();
  EXPECT_EQ(modMain::world.centreMessageAge, 1);
  modMain::world.centreMessageAge = 249;
  canvas().Cls();
  modMain::paintCentreMessage();
  EXPECT_EQ(modMain::world.centreMessageAge, 250);
  EXPECT_EQ(pixelAt(canvas(), 321, 271), RGB(0, 5, 0));
  canvas().Cls();
  modMain::paintCentreMessage();
  EXPECT_EQ(modMain::world.centreMessageAge, 251);
  EXPECT_EQ(pixelAt(canvas(), 321, 271), Colour{});
  modMain::paintCentreMessage();
  EXPECT_EQ(modMain::world.centreMessageAge, 251) << "it no longer ages";
}

TEST_F(ScreenMessages, MessageAgesByTheTimeScaleRoundedToEven) {
  modMain::showCentreMessage("abcd");
  modMain::world.frameTime = 15;
  modMain::paintCentreMessage();
  EXPECT_EQ(modMain::world.centreMessageAge, 2) << "1.5";
  modMain::paintCentreMessage();
  EXPECT_EQ(modMain::world.centreMessageAge, 4) << "3.5";
  modMain::world.frameTime = 25;
  modMain::paintCentreMessage();
  EXPECT_EQ(modMain::world.centreMessageAge, 6) << "6.5";
  modMain::world.centreMessageAge = 1;
  modMain::world.frameTime = 15;
  modMain::paintCentreMessage();
  EXPECT_EQ(modMain::world.centreMessageAge, 2) << "2.5";
}

TEST_F(ScreenMessages, ANewMessageIsAtFullBrightnessAtOnce) {
  modMain::showCentreMessage("abcd");
  for (int frame = 0; frame < 100; ++frame) modMain::paintCentreMessage();
  modMain::showCentreMessage("abcde");
  canvas().Cls();
  modMain::paintCentreMessage();
  // (11445 - 450) / 2.3 = 4780.4, pixel 319.
  EXPECT_EQ(pixelAt(canvas(), 319, 271), RGB(0, 254, 0));
}

}  // namespace
}  // namespace kelvora
