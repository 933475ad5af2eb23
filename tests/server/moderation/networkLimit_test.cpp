#include "server/moderation/networkLimit.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::server {
namespace {

TEST(NetworkLimit, IsForEachNetwork) {
  NetworkLimit limit(2, 1'000);
  for (const char* network : {"192.0.2.1", "192.0.2.2"}) {
    EXPECT_TRUE(limit.allows(network, 5'000));
    EXPECT_TRUE(limit.allows(network, 5'000));
    EXPECT_FALSE(limit.allows(network, 5'000));
  }
  EXPECT_FALSE(limit.allows("192.0.2.1", 5'999));
  EXPECT_TRUE(limit.allows("192.0.2.1", 6'000));
}

TEST(NetworkLimit, RemembersABoundedNumberOfNetworks) {
  NetworkLimit limit(2, 1'000);
  for (std::size_t i = 0; i < NetworkLimit::maxNetworks; ++i) EXPECT_TRUE(limit.allows(std::to_string(i), 5'000));
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(limit.allows("0", 6'000)) << "a known one";
  EXPECT_FALSE(limit.allows("new", 6'999));
  EXPECT_TRUE(limit.allows("new", 7'000)) << "the others' limits are full again";
  EXPECT_TRUE(limit.allows("0", 7'000));
  EXPECT_FALSE(limit.allows("0", 7'000)) << "not forgotten: its last events were a second ago";
}

}  // namespace
}  // namespace kelvora::server
