#include "frontend/webAddress.h"

#include <gtest/gtest.h>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

TEST(WebAddressText, ANameAloneMeansPort80) {
  EXPECT_EQ(parseWebAddress("web.invalid"), (WebAddress{"web.invalid", 80}));
  EXPECT_EQ(parseWebAddress("127.0.0.1"), (WebAddress{"127.0.0.1", 80}));
  EXPECT_EQ(parseWebAddress(""), (WebAddress{"", 80}));
}

TEST(WebAddressText, PortFollowsAColon) {
  EXPECT_EQ(parseWebAddress("web.invalid:8080"), (WebAddress{"web.invalid", 8080}));
  EXPECT_EQ(parseWebAddress("127.0.0.1:1"), (WebAddress{"127.0.0.1", 1}));
  EXPECT_EQ(parseWebAddress("127.0.0.1:65535"), (WebAddress{"127.0.0.1", 65535}));
}

TEST(WebAddressText, InvalidPortCountsAsPort80) {
  for (const char* text : {"h:", "h:0", "h:65536", "h:-1", "h:abc", "h:80x", "h: 8080", "h:99999999999"}) {
    EXPECT_EQ(parseWebAddress(text), (WebAddress{"h", 80})) << text;
  }
}

TEST(WebAddressText, Ipv6AddressTakesItsPortAfterABracket) {
  EXPECT_EQ(parseWebAddress("::1"), (WebAddress{"::1", 80}));
  EXPECT_EQ(parseWebAddress("[::1]"), (WebAddress{"::1", 80}));
  EXPECT_EQ(parseWebAddress("[::1]:8080"), (WebAddress{"::1", 8080}));
  EXPECT_EQ(parseWebAddress("[::1"), (WebAddress{"::1", 80}));
  EXPECT_EQ(parseWebAddress("["), (WebAddress{"", 80}));
}

TEST(WebAddressText, TheAuthorityNamesAnyPortBut80) {
  EXPECT_EQ((WebAddress{"web.invalid", 80}).authority(), "web.invalid");
  EXPECT_EQ((WebAddress{"web.invalid", 8080}).authority(), "web.invalid:8080");
  EXPECT_EQ((WebAddress{"::1", 80}).authority(), "[::1]");
  EXPECT_EQ((WebAddress{"::1", 8080}).authority(), "[::1]:8080");
}

TEST(WebAnswer, KeepsAMebibyteAndNoMore) {
  std::string answer(1024 * 1024 - 3, 'a');
  EXPECT_TRUE(appendAnswer(answer, "bcd"));
  EXPECT_EQ(answer.size(), 1024U * 1024U);
  EXPECT_TRUE(appendAnswer(answer, ""));
  EXPECT_FALSE(appendAnswer(answer, "e"));
  EXPECT_EQ(answer.size(), 1024U * 1024U);
  EXPECT_EQ(answer.back(), 'd');
}

TEST(WebAnswer, TakesAsMuchOfTheLastPartAsFits) {
  std::string answer(1024 * 1024 - 3, 'a');
  EXPECT_FALSE(appendAnswer(answer, "bcde"));
  EXPECT_EQ(answer.substr(1024 * 1024 - 4), "abcd");
}

class WebSocket : public GameTest {
 protected:
  void connectUpdates() {
    frmMain->sockUpdates.onConnect = nullptr;
    frmMain->sockUpdates.onDataArrival = nullptr;
    frmMain->sockUpdates.Connect();
    host().acceptConnection();
    passEvents();
  }
  HeadlessSocket& host() { return machine.socketOf(frmMain->sockUpdates); }
};

TEST_F(WebSocket, AtMostFortyNineReadsAreMadeAtATime) {
  connectUpdates();
  host().deliver(std::string(60, 'x'), 1);
  passEvents();
  EXPECT_EQ(readArrived(frmMain->sockUpdates), std::string(49, 'x'));
  EXPECT_EQ(readArrived(frmMain->sockUpdates), std::string(11, 'x'));
}

TEST_F(WebSocket, NothingIsReadWhenTheConnectionHasEnded) {
  connectUpdates();
  host().deliver("abc");
  passEvents();
  host().setState(sckClosing);
  EXPECT_EQ(readArrived(frmMain->sockUpdates), "");
  host().setState(sckConnected);
  EXPECT_EQ(readArrived(frmMain->sockUpdates), "abc");
}

TEST_F(WebSocket, AddressIsTheBackendsWebHost) {
  machine.host = "other.invalid:81";
  EXPECT_EQ(webAddress(), (WebAddress{"other.invalid", 81}));
}

}  // namespace
}  // namespace kelvora
