#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <vector>

#include "server/config/options.h"

namespace kelvora::server {
namespace {

TEST(ServerConfig, APipeCanHoldTheSettings) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  constexpr std::string_view text = "port = 2011\n";
  ASSERT_EQ(::write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  ::close(ends[1]);
  const std::vector<std::string> arguments{"--config", "/dev/fd/" + std::to_string(ends[0])};
  Options options;
  EXPECT_EQ(parseOptions(arguments, options).reason(), "");
  EXPECT_EQ(options.port, 2011);
  ::close(ends[0]);
}

}  // namespace
}  // namespace kelvora::server
