#include "platform/windowing/lineText.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(LineText, LineBreaksAndTabsBetweenWordsBecomeOneBlank) {
  EXPECT_EQ(cleanLine("\n\tone\n\n\ttwo\tthree\n"), "one two three");
}

TEST(LineText, OtherControlCharactersAreDropped) {
  EXPECT_EQ(cleanLine("a\r\x01\x1F"
                      "b"),
            "ab");
}

TEST(LineText, EveryOtherByteStays) { EXPECT_EQ(cleanLine(" \x7F\x80\xFF "), " \x7F\x80\xFF "); }

}  // namespace
}  // namespace kelvora
