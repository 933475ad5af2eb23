// A server's bots on real loopback sockets.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/server/net/runningServer.h"
#include "tests/server/net/tcpClient.h"

namespace kelvora::server {
namespace {

Options withBots() {
  Options options;
  options.bots = {.count = 3, .skill = SkillLevel::hard};
  return options;
}

TEST(LoopbackBots, BotsSoonJoinALonePerson) {
  const RunningServer server(withBots());
  Client ann(server.port());
  ann.login("Ann");
  ann.readUntil(wire::msgLoginAccepted);
  for (int i = 0; i < 3; ++i) ann.readUntil(wire::msgPlayerJoined);
  const std::string first = ann.readUntil(wire::msgPosition);
  EXPECT_NE(first.substr(0, 2), "1\x82") << "Ann has not moved";
}

TEST(LoopbackBots, BotsLeaveWithTheLastPerson) {
  const RunningServer server(withBots());
  {
    Client ann(server.port());
    ann.login("Ann");
    ann.readUntil(wire::msgPlayerJoined);
  }
  const auto hasLeft = [&] {
    const auto lines = server.log();
    const auto count = [&](const char* what) {
      return std::ranges::count_if(lines,
                                   [&](const std::string& line) { return line.find(what) != std::string::npos; });
    };
    return count(" left") >= 2 && count(" left") == count(" joined");
  };
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!hasLeft() && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
  EXPECT_TRUE(hasLeft());
}

}  // namespace
}  // namespace kelvora::server
