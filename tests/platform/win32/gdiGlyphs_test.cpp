#include "platform/win32/gdiGlyphs.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kelvora {
namespace {

const FontSpec font{"Comic Sans MS", 12, true};

TEST(GdiGlyphs, LettersAreDrawnInGreyLevels) {
  GdiGlyphSource source;
  const Glyph glyph = source.glyph(font, 'O');
  EXPECT_EQ(glyph.coverage.size(), static_cast<std::size_t>(glyph.width * glyph.height));
  EXPECT_TRUE(std::ranges::any_of(glyph.coverage, [](int level) { return level > 200; }));
  EXPECT_TRUE(std::ranges::any_of(glyph.coverage, [](int level) { return level > 20 && level < 235; }));
}

TEST(GdiGlyphs, ALetterStandsBetweenItsPenPositions) {
  GdiGlyphSource source;
  const Glyph glyph = source.glyph(font, 'O');
  int inside = 0;
  int outside = 0;
  for (int i = 0; i < static_cast<int>(glyph.coverage.size()); ++i) {
    const int x = i % glyph.width + glyph.left;
    (x >= -1 && x <= glyph.advance ? inside : outside) += glyph.coverage[static_cast<std::size_t>(i)];
  }
  EXPECT_GT(inside, 0);
  EXPECT_EQ(outside, 0);
}

TEST(GdiGlyphs, BlanksAndControlCharactersHaveAWidthAndNoPixels) {
  GdiGlyphSource source;
  for (const int letter : {0x20, 0xA0, 0x07, 0x81}) {
    const Glyph glyph = source.glyph(font, static_cast<unsigned char>(letter));
    EXPECT_GT(glyph.advance, 0);
    EXPECT_TRUE(glyph.coverage.empty());
  }
}

TEST(GdiGlyphs, LargerFontsHaveHigherLines) {
  GdiGlyphSource source;
  EXPECT_GT(source.lineHeight({"Comic Sans MS", 16, true}), source.lineHeight({"Comic Sans MS", 9, true}));
}

TEST(GdiGlyphs, UnreadableSizesAreReplaced) {
  GdiGlyphSource source;
  for (const float size : {-5.0F, 0.0F, 1e30F}) {
    EXPECT_EQ(source.lineHeight({"Comic Sans MS", size, true}), source.lineHeight({"Comic Sans MS", 9, true}));
  }
}

}  // namespace
}  // namespace kelvora
