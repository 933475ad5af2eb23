#include "platform/win32/wideText.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(WideText, HasACharacterForEachByteOfTheCodePage) {
  EXPECT_EQ(toWide("a\xE4\x80"), L"a\u00E4\u20AC");
  EXPECT_EQ(fromWide(L"a\u00E4\u0416\u20AC"), "a\xE4\x80") << "the code page has no Cyrillic letters";
}

TEST(WideText, JoinsSeparateAccents) {
  EXPECT_EQ(withJoinedAccents(L"Rene\u0301e"), L"Ren\u00E9e");
  EXPECT_EQ(withJoinedAccents(L""), L"");
  const std::wstring half = {L'a', 0xD800, L'b'};
  EXPECT_EQ(withJoinedAccents(half), half);
}

TEST(WideText, HasACharacterForSeveralBytesOfAPath) {
  EXPECT_EQ(wideFromUtf8("C:/\xC3\xA4\xE2\x82\xAC"), L"C:/\u00E4\u20AC");
  EXPECT_EQ(wideFromUtf8(""), L"");
}

}  // namespace
}  // namespace kelvora
