#include "server/net/proxyLine.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

using Result = ProxyLine::Result;

TEST(ProxyLine, NamesTheClient) {
  ProxyLine four;
  EXPECT_EQ(four.read("PROXY TCP4 192.0.2.1 198.51.100.1 50000 2010\r\n\x80rest"), Result::complete);
  EXPECT_EQ(four.address().to_string(), "192.0.2.1");
  EXPECT_EQ(four.rest(), "\x80rest");
  ProxyLine six;
  EXPECT_EQ(six.read("PROXY TCP6 2001:db8::1 ::1 50000 2010\r\n"), Result::complete);
  EXPECT_EQ(six.address().to_string(), "2001:db8::1");
  EXPECT_EQ(six.rest(), "");
}

TEST(ProxyLine, MayArriveByteByByte) {
  ProxyLine line;
  const std::string text = "PROXY TCP4 192.0.2.1 198.51.100.1 50000 2010\r\n";
  for (std::size_t i = 0; i + 1 < text.size(); ++i) ASSERT_EQ(line.read(text.substr(i, 1)), Result::partial) << i;
  EXPECT_EQ(line.read("\n"), Result::complete);
}

TEST(ProxyLine, KeepsOtherBytes) {
  for (const std::string text : {"\x80\x87", "GET / HTTP/1.0\r\n\r\n", "PUT", "PROXZ ", "proxy TCP4"}) {
    ProxyLine line;
    EXPECT_EQ(line.read(text), Result::absent) << text;
    EXPECT_EQ(line.rest(), text);
  }
  ProxyLine late;
  EXPECT_EQ(late.read("PRO"), Result::partial);
  EXPECT_EQ(late.read("POSE"), Result::absent);
  EXPECT_EQ(late.rest(), "PROPOSE");
}

TEST(ProxyLine, LineWithoutAClientIsMalformed) {
  for (const std::string text :
       {"PROXY \r\n", "PROXY UNKNOWN\r\n", "PROXY TCP4 somebody 1.2.3.4 1 2\r\n",
        "PROXY TCP6 192.0.2.1 198.51.100.1 1 2\r\n", "PROXY TCP4 ::1 ::1 1 2\r\n", "PROXY TCP4\r\n"}) {
    ProxyLine line;
    EXPECT_EQ(line.read(text), Result::malformed) << text;
  }
}

TEST(ProxyLine, EndsAfter107Bytes) {
  const std::string start = "PROXY TCP4 192.0.2.1 ";
  ProxyLine longest;
  EXPECT_EQ(longest.read(start + std::string(84, 'x') + "\r\n"), Result::complete);
  ProxyLine tooLong;
  EXPECT_EQ(tooLong.read(start + std::string(85, 'x') + "\r\n"), Result::malformed);
  ProxyLine endless;
  EXPECT_EQ(endless.read(start + std::string(85, 'x')), Result::partial);
  EXPECT_EQ(endless.read("x"), Result::malformed);
}

}  // namespace
}  // namespace kelvora::server
