#include <gtest/gtest.h>

#include <map>
#include <utility>

#include "raster/surface.h"
#include "tests/raster/referenceSurface.h"

namespace kelvora {
namespace {

// A font of blocks: every letter is 2 by 2 pixels, one pixel below the line's top, and advances by 3 pixels. "i"
// advances by 2, "j" extends one pixel to the left. Lines are 5 pixels apart, above 10 points 7.
class BlockFace : public GlyphSource {
 public:
  Glyph glyph(const FontSpec& font, unsigned char character) override {
    ++taken[{font.size, character}];
    lastFont = font;
    if (character == ' ') return {0, 0, 0, 0, 3, {}};
    if (character == 'h') return {0, 0, 1, 1, 1, {128}};
    if (character == 'e') return {0, 0, 3, 3, 4, {255}};  // coverage is missing
    return {character == 'j' ? -1 : 0, 1, 2, 2, character == 'i' ? 2 : 3, {255, 255, 255, 255}};
  }
  int lineHeight(const FontSpec& font) override { return font.size > 10 ? 7 : 5; }

  std::map<std::pair<float, unsigned char>, int> taken;
  FontSpec lastFont;
};

class Print : public testing::Test {
 protected:
  Print() {
    Surface::setGlyphSource(&face_);
    surface_.ForeColor = RGB(255, 255, 255);
    surface_.resize(10, 8);
  }
  ~Print() override { Surface::setGlyphSource(nullptr); }

  BlockFace face_;
  Surface surface_;
};

TEST_F(Print, SetsGlyphsFromThePenPosition) {
  surface_.CurrentX = 15;
  surface_.CurrentY = 30;
  surface_.Print("aij");
  EXPECT_EQ(drawing(surface_),
            "..........\n"
            "..........\n"
            "..........\n"
            ".##.###...\n"  // a at 1, i at 4, j with its pen at 6 extends to 5
            ".##.###...\n"
            "..........\n"
            "..........\n"
            "..........\n");
}

TEST_F(Print, MovesThePenToTheNextLine) {
  surface_.CurrentX = 75;
  surface_.CurrentY = 40;
  surface_.Print("ab");
  EXPECT_EQ(surface_.CurrentX, 0);
  EXPECT_EQ(surface_.CurrentY, 40 + 5 * 15);
}

TEST_F(Print, ReturnsToItsColumnAtALineBreak) {
  surface_.CurrentX = 60;
  surface_.Print("a\r\nb");
  EXPECT_EQ(drawing(surface_),
            "..........\n"
            "....##....\n"
            "....##....\n"
            "..........\n"
            "..........\n"
            "..........\n"
            "....##....\n"
            "....##....\n");
  EXPECT_EQ(surface_.CurrentX, 0);
  EXPECT_EQ(surface_.CurrentY, 150);
}

TEST_F(Print, CountsATrailingLineBreakAsALine) {
  surface_.Print("a\r\n");
  EXPECT_EQ(surface_.CurrentY, 150);
}

TEST_F(Print, OfAnEmptyTextMovesDownOneLine) {
  surface_.Print("");
  EXPECT_EQ(surface_.CurrentY, 75);
  EXPECT_EQ(face_.taken.size(), 0U);
}

TEST_F(Print, UsesFontSizeInsteadOfTheFontsOwn) {
  surface_.Font = {"Comic Sans MS", 9, true};
  surface_.FontSize = 12;
  surface_.Print("a");
  EXPECT_EQ(face_.lastFont, (FontSpec{"Comic Sans MS", 12, true}));
  EXPECT_EQ(surface_.CurrentY, 7 * 15);
}

TEST_F(Print, MixesInkAndBackgroundByCoverage) {
  surface_.BackColor = RGB(100, 0, 255);
  surface_.Cls();
  surface_.ForeColor = RGB(200, 255, 0);
  surface_.Print("h");
  // (200 * 128 + 100 * 127) / 255 = 150.2; 255 * 128 / 255 = 128; 255 * 127 / 255 = 127.
  EXPECT_EQ(surface_.pixels()[0], toPixel(RGB(150, 128, 127)));
  EXPECT_EQ(surface_.pixels()[1], toPixel(RGB(100, 0, 255)));
}

TEST_F(Print, IsClippedAtTheBorders) {
  surface_.CurrentX = -15;
  surface_.CurrentY = -30;
  surface_.Print("aaaaaa");
  EXPECT_EQ(drawing(surface_).substr(0, 22),
            "#.##.##.##\n"
            "..........\n");
  surface_.CurrentX = -1e9F;
  surface_.CurrentY = 1e9F;
  surface_.Print("a\r\na");
  EXPECT_EQ(drawing(surface_).substr(11),
            "..........\n..........\n..........\n..........\n..........\n..........\n..........\n");
}

TEST_F(Print, RequestsEachGlyphOnce) {
  surface_.Print("aba");
  surface_.Print("ab");
  Surface other;
  other.resize(1, 1);
  other.Print("a");
  EXPECT_EQ((face_.taken[{9.0F, 'a'}]), 1);
  EXPECT_EQ((face_.taken[{9.0F, 'b'}]), 1);
  surface_.FontSize = 14;
  surface_.Print("a");
  EXPECT_EQ((face_.taken[{14.0F, 'a'}]), 1);
  EXPECT_EQ((face_.taken[{9.0F, 'a'}]), 1);
}

TEST_F(Print, ForgetsTheGlyphsOfAnEarlierSource) {
  surface_.Print("a");
  BlockFace second;
  Surface::setGlyphSource(&second);
  surface_.Print("a");
  EXPECT_EQ((second.taken[{9.0F, 'a'}]), 1);
  Surface::setGlyphSource(nullptr);
}

TEST_F(Print, TreatsMissingCoverageAsNone) {
  surface_.Print("e");
  EXPECT_EQ(surface_.pixels()[0], 0xFFFFFFU);
  EXPECT_EQ(surface_.pixels()[1], 0U);
  EXPECT_EQ(surface_.pixels()[20], 0U);
}

TEST_F(Print, MeasuresTheWidestLineInTwips) {
  EXPECT_EQ(Surface::textWidth({}, "abi"), (3 + 3 + 2) * 15);
  EXPECT_EQ(Surface::textWidth({}, "a\r\nabc\r\n"), 9 * 15);
  EXPECT_EQ(Surface::textWidth({}, "a c"), 9 * 15);
  EXPECT_EQ(Surface::textWidth({}, ""), 0);
}

TEST_F(Print, WithoutASourcePrintsAndMeasuresNothing) {
  Surface::setGlyphSource(nullptr);
  surface_.CurrentX = 30;
  surface_.CurrentY = 45;
  surface_.Print("abc");
  EXPECT_EQ(drawing(surface_).find('#'), std::string::npos);
  EXPECT_EQ(surface_.CurrentX, 30);
  EXPECT_EQ(surface_.CurrentY, 45);
  EXPECT_EQ(Surface::textWidth({}, "abc"), 0);
}

}  // namespace
}  // namespace kelvora
