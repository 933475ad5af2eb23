#include "server/config/addressList.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

bool listHas(const std::string& text, const char* address) {
  return AddressList::read(text).value().has(boost::asio::ip::make_address(address));
}

TEST(AddressList, HasItsAddresses) {
  EXPECT_FALSE(listHas("", "127.0.0.1"));
  EXPECT_TRUE(listHas("192.0.2.1", "192.0.2.1"));
  EXPECT_TRUE(listHas("192.0.2.1", "::ffff:192.0.2.1"));
  EXPECT_TRUE(listHas(" ::ffff:192.0.2.1 ", "192.0.2.1"));
  EXPECT_TRUE(listHas("192.0.2.1 ,2001:db8::1", "2001:db8::1"));
  EXPECT_FALSE(listHas("192.0.2.1,2001:db8::1", "2001:db8::2"));
  EXPECT_TRUE(listHas("192.0.2.1, *", "2001:db8::2"));
}

TEST(AddressList, HasTheAddressesOfItsNetworks) {
  EXPECT_TRUE(listHas("192.0.2.77/24", "192.0.2.1"));
  EXPECT_FALSE(listHas("192.0.2.0/24", "192.0.3.1"));
  EXPECT_TRUE(listHas("192.0.2.128/25", "192.0.2.200"));
  EXPECT_FALSE(listHas("192.0.2.128/25", "192.0.2.127"));
  EXPECT_TRUE(listHas("10.0.0.0/15", "10.1.255.255"));
  EXPECT_FALSE(listHas("10.0.0.0/15", "10.2.0.0"));
  EXPECT_FALSE(listHas("192.0.2.1/32", "192.0.2.0"));
  EXPECT_TRUE(listHas("0.0.0.0/0", "192.0.2.1"));
  EXPECT_FALSE(listHas("0.0.0.0/0", "2001:db8::1")) << "the other family";
  EXPECT_TRUE(listHas("2001:db8::/32", "2001:db8:ffff::1"));
  EXPECT_FALSE(listHas("2001:db8::/32", "2001:db9::1"));
}

TEST(AddressList, RefusesAnythingElse) {
  for (const char* text : {"localhost", ",", "192.0.2.1 192.0.2.2", "192.0.2.0/33", "192.0.2.0/", "192.0.2.0/-1",
                           "2001:db8::/129", "/8", "**"}) {
    EXPECT_FALSE(AddressList::read(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace kelvora::server
