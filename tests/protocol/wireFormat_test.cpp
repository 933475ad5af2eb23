#include "protocol/wireFormat.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>
#include <vector>

namespace kelvora {
namespace {

using Views = std::vector<std::string_view>;

TEST(WireFormat, SplitsAtEverySeparator) {
  EXPECT_EQ(wire::splitFields("a\x82"
                              "b\x82"
                              "c"),
            (Views{"a", "b", "c"}));
  EXPECT_EQ(wire::splitFields("\x82\x82"), (Views{"", "", ""}));
  EXPECT_EQ(wire::splitFields("whole"), (Views{"whole"}));
  EXPECT_EQ(wire::splitFields(""), (Views{""}));
}

TEST(WireFormat, SplitsIntoTheRequestedNumberOfFields) {
  std::array<std::string_view, 2> fields;
  EXPECT_TRUE(wire::splitFields("a\x82", fields));
  EXPECT_EQ(fields, (std::array<std::string_view, 2>{"a", ""}));
  EXPECT_FALSE(wire::splitFields("a", fields)) << "too few";
  EXPECT_FALSE(wire::splitFields("\x82\x82", fields)) << "too many";
}

TEST(WireFormat, OpensAFrame) {
  EXPECT_EQ(wire::textOf("\x80\x90-1\x82hi\x81"), "\x90-1\x82hi");
  EXPECT_EQ(wire::textOf("\x80\x81"), "");
  EXPECT_EQ(wire::textOf("\x80"), "");
  EXPECT_EQ(wire::textOf(""), "");
  const auto message = wire::splitId("\x90-1\x82hi");
  ASSERT_TRUE(message);
  EXPECT_EQ(message->id, 144);
  EXPECT_EQ(message->fields, "-1\x82hi");
  EXPECT_FALSE(wire::splitId(""));
}

}  // namespace
}  // namespace kelvora
