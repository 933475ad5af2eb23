#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

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

// Glyphs of any size and coverage, many of which overlap their neighbours.
class RandomFace : public GlyphSource {
 public:
  RandomFace() {
    for (Glyph& glyph : glyphs) {
      glyph = {draw(-3, 2), draw(-1, 4), draw(0, 9), draw(0, 6), draw(0, 8), {}};
      glyph.coverage.resize(static_cast<std::size_t>(glyph.width * glyph.height));
      for (std::uint8_t& coverage : glyph.coverage) {
        coverage = static_cast<std::uint8_t>(draw(0, 2) == 0 ? 0 : draw(0, 1) == 0 ? 255 : draw(0, 255));
      }
    }
  }
  Glyph glyph(const FontSpec&, unsigned char character) override { return glyphs.at(character); }
  int lineHeight(const FontSpec&) override { return 9; }

  int draw(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }

 private:
  std::mt19937 random_{1};

 public:
  std::vector<Glyph> glyphs = std::vector<Glyph>(256);
};

// Blends each pixel of each glyph by itself, over the image that `surface` has.
std::vector<Pixel> printedSlowly(const Surface& surface, const std::vector<Glyph>& glyphs, const std::string& text,
                                 int pen, int top) {
  std::vector<Pixel> pixels(surface.pixels().begin(), surface.pixels().end());
  const Pixel ink = toPixel(surface.ForeColor);
  for (const char character : text) {
    const Glyph& glyph = glyphs.at(static_cast<unsigned char>(character));
    for (int i = 0; i < glyph.width * glyph.height; ++i) {
      const int x = pen + glyph.left + i % glyph.width;
      const int y = top + glyph.top + i / glyph.width;
      if (x < 0 || y < 0 || x >= surface.pixelWidth() || y >= surface.pixelHeight()) continue;
      Pixel& pixel = pixels.at(static_cast<std::size_t>(y * surface.pixelWidth() + x));
      const unsigned share = glyph.coverage.at(static_cast<std::size_t>(i));
      Pixel mixed = 0;
      for (const unsigned shift : {0U, 8U, 16U}) {
        const unsigned parts = (ink >> shift & 0xFF) * share + (pixel >> shift & 0xFF) * (255 - share);
        mixed |= (2 * parts + 255) / 510 << shift;  // rounded to the nearest
      }
      pixel = mixed;
    }
    pen += glyph.advance;
  }
  return pixels;
}

TEST_F(Print, DrawsEveryLineAsItsGlyphsOneByOne) {
  RandomFace face;
  Surface::setGlyphSource(&face);
  surface_.resize(100, 40);
  for (int run = 0; run < 3000; ++run) {
    std::string text(static_cast<std::size_t>(run % 50 == 0 ? face.draw(250, 260) : face.draw(0, 25)), ' ');
    for (char& character : text) character = static_cast<char>(face.draw('A', 'z'));
    const int pen = face.draw(-40, 110);
    const int top = face.draw(-12, 45);
    surface_.ForeColor = RGB(face.draw(0, 255), face.draw(0, 255), face.draw(0, 255));
    surface_.CurrentX = static_cast<float>(pen * twipsPerPixel);
    surface_.CurrentY = static_cast<float>(top * twipsPerPixel);
    const std::vector<Pixel> expected = printedSlowly(surface_, face.glyphs, text, pen, top);
    surface_.Print(text);
    ASSERT_EQ(pixelsOf(surface_), expected) << "run " << run << " at " << pen << ", " << top;
    if (run % 40 == 0) {
      surface_.BackColor = RGB(face.draw(0, 255), face.draw(0, 255), face.draw(0, 255));
      surface_.Cls();
    }
  }
  Surface::setGlyphSource(nullptr);
}

TEST_F(Print, IsClearedCompletely) {
  RandomFace face;
  Surface::setGlyphSource(&face);
  surface_.resize(600, 40);
  for (int run = 0; run < 300; ++run) {
    surface_.CurrentX = static_cast<float>(face.draw(0, 500) * twipsPerPixel);
    surface_.CurrentY = static_cast<float>(face.draw(0, 30) * twipsPerPixel);
    surface_.Print(std::string(static_cast<std::size_t>(face.draw(1, 20)), static_cast<char>(face.draw('A', 'z'))));
    surface_.Cls();
    ASSERT_EQ(pixelsOf(surface_), std::vector<Pixel>(surface_.pixels().size())) << "run " << run;
  }
  Surface::setGlyphSource(nullptr);
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
