#include <gtest/gtest.h>

#include "base/fault.h"
#include "network/messageFields.h"

namespace kelvora {
namespace {

TEST(MessageFields, NumbersAreReadFromTheLeft) {
  const netMan::MessageFields fields(
      "12abc\x82"
      "abc\x82.5\x82\x82 -7 ");
  EXPECT_EQ(fields.int16(0), 12);
  EXPECT_EQ(fields.int16(1), 0);
  EXPECT_EQ(fields.single(2), 0.5F);
  EXPECT_EQ(fields.int32(3), 0);
  EXPECT_EQ(fields.int32(4), -7);
  EXPECT_EQ(fields.text(4), " -7 ");
}

TEST(MessageFields, RoundTiesToEven) {
  const netMan::MessageFields fields(
      "2.5\x82"
      "3.5\x82-2.5");
  EXPECT_EQ(fields.int16(0), 2);
  EXPECT_EQ(fields.int16(1), 4);
  EXPECT_EQ(fields.int32(2), -2);
}

TEST(MessageFields, NumbersDoNotWrap) {
  const netMan::MessageFields fields(
      "32767\x82"
      "32768\x82"
      "2147483648\x82"
      "1e39\x82-32768");
  EXPECT_EQ(fields.int16(0), 32767);
  EXPECT_THROW(fields.int16(1), RuntimeFault);
  EXPECT_EQ(fields.int32(1), 32768);
  EXPECT_THROW(fields.int32(2), RuntimeFault);
  EXPECT_EQ(fields.real(2), 2147483648.0);
  EXPECT_THROW(fields.single(3), RuntimeFault);
  EXPECT_EQ(fields.int16(4), -32768);
}

TEST(MessageFields, AMissingFieldIsAFault) {
  const netMan::MessageFields one("a");
  EXPECT_EQ(one.text(0), "a");
  EXPECT_THROW(one.text(1), RuntimeFault);
  EXPECT_THROW(netMan::MessageFields{}.text(0), RuntimeFault);
}

}  // namespace
}  // namespace kelvora
