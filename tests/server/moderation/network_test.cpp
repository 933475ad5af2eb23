#include "server/moderation/network.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

std::string network(const char* address) { return networkOf(boost::asio::ip::make_address(address)); }

TEST(Network, OfAHostIsItsAddressOrItsRange) {
  EXPECT_EQ(network("192.0.2.7"), "192.0.2.7");
  EXPECT_EQ(network("::ffff:192.0.2.7"), "192.0.2.7");
  EXPECT_EQ(network("2001:db8:1:2:3:4:5:6"), "2001:db8:1:2::/64");
  EXPECT_EQ(network("2001:db8:1:2::9"), "2001:db8:1:2::/64");
  EXPECT_EQ(network("2001:db8:1:2:ffff:ffff:ffff:ffff"), "2001:db8:1:2::/64");
  EXPECT_NE(network("2001:db8:1:3::9"), network("2001:db8:1:2::9"));
}

TEST(Network, IsReadInItsOwnFormAndAsAnAddress) {
  EXPECT_EQ(readNetwork("192.0.2.7"), "192.0.2.7");
  EXPECT_EQ(readNetwork("2001:db8:1:2::9"), "2001:db8:1:2::/64");
  EXPECT_EQ(readNetwork("2001:db8:1:2::/64"), "2001:db8:1:2::/64");
  for (const char* text : {"", "192.0.2", "192.0.2.7/64", "192.0.2.7/32", "2001:db8::/48", "Ann", "::1/", "/64"}) {
    EXPECT_EQ(readNetwork(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kelvora::server
