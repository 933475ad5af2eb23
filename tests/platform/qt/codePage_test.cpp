#include "platform/qt/codePage.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(CodePage, KnowsTheEuroAndTheQuotes) {
  EXPECT_EQ(toQString("\x80"), QString(QChar(0x20AC)));
  EXPECT_EQ(toQString("\x93x\x94"), QString::fromUtf16(u"\u201Cx\u201D"));
  EXPECT_EQ(toBytes(QString::fromUtf16(u"\u20AC\u0178\u017E")), "\x80\x9F\x9E");
}

TEST(CodePage, KeepsAsciiAndTheUpperHalf) {
  EXPECT_EQ(toBytes(QString::fromUtf16(u"caf\u00E9 \u00FF")), "caf\xE9 \xFF");
  EXPECT_EQ(toQString("\xE4"), QString(QChar(0xE4)));
}

TEST(CodePage, RoundTripsEveryByte) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string text(1, static_cast<char>(byte));
    EXPECT_EQ(toQString(text).size(), 1) << byte;
    EXPECT_EQ(toBytes(toQString(text)), text) << byte;
  }
}

TEST(CodePage, UndefinedPositionsAreControlCharactersOfTheSameNumber) {
  for (const int byte : {0x81, 0x8D, 0x8F, 0x90, 0x9D}) {
    EXPECT_EQ(toUnicode(static_cast<unsigned char>(byte)), byte);
  }
}

TEST(CodePage, DropsMissingCharacters) {
  EXPECT_EQ(toBytes(QString::fromUtf16(u"a\u0416b\u4E2Dc")), "abc");
  // Outside the basic plane: two surrogates, both dropped.
  EXPECT_EQ(toBytes(QString::fromUtf16(u"x\U0001F600y")), "xy");
  // A control character whose number is another character here.
  EXPECT_EQ(toBytes(QString(QChar(0x80))), "");
}

}  // namespace
}  // namespace kelvora
