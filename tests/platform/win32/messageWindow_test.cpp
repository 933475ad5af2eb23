#include "platform/win32/messageWindow.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/win32/gdiFonts.h"
#include "raster/twips.h"

namespace kelvora {
namespace {

TEST(MessageWindow, IsAsWideAsItsLongestWord) {
  const std::wstring word(90, L'M');
  const int width = FontMeasure(gdiFont(FontSpec{}, 1)).width(word.data(), word.size());
  ASSERT_GT(width, 600);
  const MessageWindow box("A " + std::string(90, 'M') + " is here");
  EXPECT_GT(box.Width, static_cast<float>(width * twipsPerPixel));
}

TEST(MessageWindow, WrapsALineOfShortWords) {
  std::string text;
  for (int i = 0; i < 90; ++i) text += "MM ";
  const MessageWindow box(text);
  EXPECT_LT(box.Width, 600.0F * twipsPerPixel);
}

}  // namespace
}  // namespace kelvora
