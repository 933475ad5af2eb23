#include "platform/windowing/boxText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "base/codePage.h"

namespace kelvora {
namespace {

std::u16string wide(const std::string& text) {
  std::u16string result;
  for (const char character : text) result += toUnicode(static_cast<unsigned char>(character));
  return result;
}

const std::u16string points = u"...";

TEST(BoxText, ShowsAUsualTextAsItIs) {
  const std::string verbs =
      "?,playsound,reloadsounds,showmusic,hidemusic,unloadmusic,loadmusic,playmusic,quarktype,showstore";
  EXPECT_EQ(boxText(verbs), wide(verbs));
  EXPECT_EQ(boxText(""), u"");
  EXPECT_EQ(boxText("Login denied: \r\nfull\x80"), u"Login denied: \nfull\u20AC");
}

TEST(BoxText, ShowsTwentyFourRows) {
  std::string lines(23, '\n');
  EXPECT_EQ(boxText(lines), std::u16string(23, u'\n'));
  EXPECT_EQ(boxText(lines + "x\ny"), std::u16string(23, u'\n') + u"x" + points);
  EXPECT_EQ(boxText(std::string(60'000, '\n')), std::u16string(23, u'\n') + points);
  std::string windows;
  for (int i = 0; i < 23; ++i) windows += "\r\n";
  EXPECT_EQ(boxText(windows + "x"), std::u16string(23, u'\n') + u"x");
}

TEST(BoxText, CountsSixtyCharactersAsARow) {
  std::string text;
  while (text.size() < 24 * 60) text += "four ";  // 1440 is a multiple of 5
  EXPECT_EQ(boxText(text), wide(text));
  EXPECT_EQ(boxText(text + "x"), wide(text) + points);
}

TEST(BoxText, BreaksWordsTooLongForALine) {
  EXPECT_EQ(boxText(std::string(96, 'x')), std::u16string(96, u'x'));
  // Words longer than 96 may break before every 32nd character.
  EXPECT_EQ(boxText(std::string(130, 'x')),
            std::u16string(96, u'x') + u'\x200B' + std::u16string(32, u'x') + u'\x200B' + u"xx");
}

TEST(BoxText, CostsTheSameForAnyLength) {
  const std::string mebibyte(1 << 20, '1');
  const std::u16string shown = boxText(mebibyte);
  EXPECT_TRUE(shown.ends_with(points));
  EXPECT_EQ(std::ranges::count(shown, u'1'), 24 * 60);
}

}  // namespace
}  // namespace kelvora
