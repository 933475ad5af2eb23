#include "platform/win32/textLines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/win32/gdiFonts.h"

namespace kelvora {
namespace {

class TextLines : public ::testing::Test {
 protected:
  std::vector<MeasuredLine> lines(const std::wstring& text, int maxWidth) const {
    return textLines(measure_.dc(), text, maxWidth);
  }
  int widthOf(const std::wstring& text) const { return measure_.width(text.data(), text.size()); }

 private:
  FontMeasure measure_{gdiFont(FontSpec{}, 1)};
};

TEST_F(TextLines, BreaksAtTheLastBlankThatFits) {
  const auto found = lines(L"one two three", widthOf(L"one two t"));
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].text, L"one two");
  EXPECT_EQ(found[1].text, L"three");
}

TEST_F(TextLines, KeepsALongWordWhole) {
  const auto found = lines(L"a incomprehensible b", widthOf(L"incomp"));
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[1].text, L"incomprehensible");
  EXPECT_EQ(widest(found), widthOf(L"incomprehensible"));
}

TEST_F(TextLines, BreaksAtLineFeedsOnlyWithoutAWidth) {
  const auto found = lines(L"one two\r\n\nthree", 0);
  ASSERT_EQ(found.size(), 3U);
  EXPECT_EQ(found[0].text, L"one two");
  EXPECT_EQ(found[1].text, L"");
  EXPECT_EQ(found[2].text, L"three");
}

TEST_F(TextLines, AdvancesAddUpToTheMeasuredWidth) {
  const auto found = lines(L"Player Name:", 0);
  ASSERT_EQ(found.size(), 1U);
  ASSERT_EQ(found[0].advances.size(), 12U);
  int sum = 0;
  for (const int advance : found[0].advances) sum += advance;
  EXPECT_EQ(sum, widthOf(L"Player Name:"));
}

/// The last column with ink after drawing a text at the right of a picture, 200 pixels wide.
int lastColumn(const std::wstring& text) {
  constexpr int width = 200;
  constexpr int height = 20;
  const HDC dc = CreateCompatibleDC(nullptr);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ before = SelectObject(dc, bitmap);
  drawText(dc, {0, 0, width, height}, text, gdiFont(FontSpec{}, 1), RGB(255, 255, 255), DT_RIGHT);
  GdiFlush();
  int last = -1;
  for (int i = 0; i < width * height; ++i) {
    if ((static_cast<const std::uint32_t*>(bits)[i] & 0xFFU) > 60) last = std::max(last, i % width);
  }
  SelectObject(dc, before);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return last;
}

TEST(DrawText, TextsAlignedAtTheRightEndInOneLine) {
  const int end = lastColumn(L"Server Address:");
  EXPECT_GE(end, 196);
  EXPECT_NEAR(lastColumn(L"Player Name:"), end, 1);
  EXPECT_NEAR(lastColumn(L"Preferred Color:"), end, 1);
}

}  // namespace
}  // namespace kelvora
