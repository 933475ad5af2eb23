#include "server/net/origin.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

TEST(Origin, OwnPagesAndProgramsMayAlwaysPlay) {
  EXPECT_TRUE(isOriginAllowed("", "arena.example:2010", ""));
  EXPECT_TRUE(isOriginAllowed("http://arena.example:2010", "arena.example:2010", ""));
  EXPECT_TRUE(isOriginAllowed("https://ARENA.example", "arena.example", ""));
}

TEST(Origin, OtherPagesMayIfTheyAreListed) {
  for (const char* origin : {"http://arena.example", "http://arena.example:2011", "http://evil.example:2010",
                             "http://arena.example:2010.evil.example", "null", "arena.example:2010", "http://"}) {
    EXPECT_FALSE(isOriginAllowed(origin, "arena.example:2010", "")) << origin;
    EXPECT_FALSE(isOriginAllowed(origin, "arena.example:2010", "http://a.example, ,https://b.example")) << origin;
    EXPECT_TRUE(isOriginAllowed(origin, "arena.example:2010", "*")) << origin;
  }
  EXPECT_TRUE(isOriginAllowed("https://b.example", "h", "http://a.example, https://b.example"));
  EXPECT_TRUE(isOriginAllowed("http://a.example", "h", "http://A.example,https://b.example"));
  EXPECT_FALSE(isOriginAllowed("http://b.example", "h", "http://a.example, https://b.example"));
  EXPECT_TRUE(isOriginAllowed("https://b.example", "h", "https://b.example/")) << "as the address bar shows it";
}

TEST(Origin, ARequestWithoutAHostHasNoOwnPage) { EXPECT_FALSE(isOriginAllowed("http://", "", "")); }

}  // namespace
}  // namespace kelvora::server
