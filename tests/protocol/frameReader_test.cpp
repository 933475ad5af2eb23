#include "protocol/frameReader.h"

#include <gtest/gtest.h>

#include <vector>

#include "generated/version.h"

namespace kelvora::wire {
namespace {

using Texts = std::vector<std::string>;

class FrameReaderTest : public testing::Test {
 protected:
  FrameReader reader;
  Texts texts;
  bool read(std::string_view bytes) {
    return reader.read(bytes, [this](std::string_view text) { texts.emplace_back(text); });
  }
};

TEST_F(FrameReaderTest, JoinsFramesThatTheNetworkSplit) {
  for (const char byte : std::string("\x80\x87"
                                     "Ann\x82\x81\x80\x98\x81"))
    ASSERT_TRUE(read({&byte, 1}));
  EXPECT_EQ(texts, (Texts{"\x87"
                          "Ann\x82",
                          "\x98"}));
}

TEST_F(FrameReaderTest, SplitsFramesThatTheNetworkJoined) {
  EXPECT_TRUE(
      read("\x80"
           "a\x81\x80\x81\x80"
           "b\x81\x80rest"));
  EXPECT_EQ(texts, (Texts{"a", "", "b"}));
  EXPECT_TRUE(read("\x81"));
  EXPECT_EQ(texts.back(), "rest");
}

TEST_F(FrameReaderTest, RefusesBytesOutsideFrames) {
  EXPECT_FALSE(FrameReader{}.read("GET / HTTP/1.0", [](std::string_view) { FAIL(); }));
  EXPECT_FALSE(FrameReader{}.read("\x81", [](std::string_view) { FAIL(); }));
  EXPECT_FALSE(
      read("\x80"
           "a\x81x"));
  EXPECT_EQ(texts, Texts{"a"}) << "earlier frames still count";
}

TEST_F(FrameReaderTest, RefusesAStartWithinAFrame) {
  EXPECT_FALSE(
      read("\x80"
           "a\x80"));
}

TEST_F(FrameReaderTest, LoginKeepsTypedStartBytes) {
  // "A" and a euro sign as the name.
  EXPECT_TRUE(
      read("\x80\x87"
           "A\x80\x82\x82"
           "2\x82" KELVORA_VERSION "\x81\x80\x98\x81"));
  EXPECT_EQ(texts, (Texts{"\x87"
                          "A\x80\x82\x82"
                          "2\x82" KELVORA_VERSION,
                          "\x98"}));
  EXPECT_FALSE(read("\x80\x80")) << "no login yet";
}

TEST_F(FrameReaderTest, RefusesLongInput) {
  EXPECT_TRUE(read('\x80' + std::string(4096, 'x') + '\x81'));
  EXPECT_EQ(texts.at(0).size(), 4096U);
  EXPECT_FALSE(read('\x80' + std::string(4097, 'x')));
  EXPECT_FALSE(FrameReader{}.read("\x80\x87" + std::string(4096, '\x80'), [](std::string_view) { FAIL(); }));
}

}  // namespace
}  // namespace kelvora::wire
