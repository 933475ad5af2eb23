#include "base/codePage.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(CodePageFromUtf8, ConvertsEveryCharacterToItsByte) {
  EXPECT_EQ(codePageFromUtf8(""), "");
  EXPECT_EQ(codePageFromUtf8("sesame 1~\t"), "sesame 1~\t");
  EXPECT_EQ(codePageFromUtf8("\u00C4pfel \u00FF\u00A0"), "\xC4pfel \xFF\xA0");
  EXPECT_EQ(codePageFromUtf8("\u20AC\u201A\u0160\u0178\u2122"), "\x80\x82\x8A\x9F\x99");
  EXPECT_EQ(codePageFromUtf8("\u0081"), "\x81") << "undefined: the control character of that number";
}

TEST(CodePageFromUtf8, RefusesCharactersOutsideTheCodePage) {
  EXPECT_EQ(codePageFromUtf8("\u0416"), std::nullopt);
  EXPECT_EQ(codePageFromUtf8("\u4E2D"), std::nullopt);
  EXPECT_EQ(codePageFromUtf8("\U0001F600"), std::nullopt);
  EXPECT_EQ(codePageFromUtf8("\u0080"), std::nullopt) << "its number belongs to the euro sign";
}

TEST(CodePageFromUtf8, RefusesInvalidUtf8) {
  EXPECT_EQ(codePageFromUtf8("\xE4"), std::nullopt) << "ends too early";
  EXPECT_EQ(codePageFromUtf8("\xE4"
                             "a"),
            std::nullopt);
  EXPECT_EQ(codePageFromUtf8("\xE2\x82"), std::nullopt);
  EXPECT_EQ(codePageFromUtf8("\xA4"), std::nullopt) << "starts with a continuation byte";
  EXPECT_EQ(codePageFromUtf8("\xC3("), std::nullopt);
  EXPECT_EQ(codePageFromUtf8("\xC1\x81"), std::nullopt) << "an overlong A";
  EXPECT_EQ(codePageFromUtf8("\xE0\x81\x81"), std::nullopt);
}

}  // namespace
}  // namespace kelvora
