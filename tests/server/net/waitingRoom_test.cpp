#include "server/net/waitingRoom.h"

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <string>
#include <vector>

namespace kelvora::server {
namespace {

using std::chrono::seconds;
using std::chrono::steady_clock;

class WaitingNewcomers : public testing::Test {
 protected:
  bool add(const std::string& network, seconds since = seconds(0)) {
    Newcomer newcomer{.socket = Socket(context_), .address = {}, .network = network, .since = start_ + since};
    return room.add(newcomer);
  }
  /// Lets everybody in whose network isn't `full`.
  void letIn(seconds time, const std::string& full = {}) {
    room.letIn(
        start_ + time,
        [&](Newcomer& newcomer) {
          asked.push_back(newcomer.network);
          return newcomer.network != full;
        },
        [&](const std::string& network) { refused.push_back(network); });
  }

  WaitingRoom room;
  std::vector<std::string> asked;
  std::vector<std::string> refused;

 private:
  asio::io_context context_;
  const steady_clock::time_point start_ = steady_clock::now();
};

TEST_F(WaitingNewcomers, AreAtMostThirtyTwoOfANetwork) {
  for (int i = 0; i < 32; ++i) EXPECT_TRUE(add("a")) << i;
  EXPECT_FALSE(add("a"));
  EXPECT_TRUE(add("b"));
}

TEST_F(WaitingNewcomers, AreAtMostSixtyFourOfAll) {
  for (int i = 0; i < 64; ++i) EXPECT_TRUE(add(std::to_string(i))) << i;
  EXPECT_FALSE(add("one more"));
  EXPECT_FALSE(room.has("one more"));
}

TEST_F(WaitingNewcomers, ComeInInTheirOrder) {
  for (const char* network : {"a", "b", "a"}) add(network);
  letIn(seconds(1));
  EXPECT_EQ(asked, (std::vector<std::string>{"a", "b", "a"}));
  EXPECT_FALSE(room.has("a"));
  EXPECT_FALSE(room.has("b"));
  EXPECT_TRUE(refused.empty());
}

TEST_F(WaitingNewcomers, OfAFullNetworkGoOnWaitingAndDelayNoOthers) {
  for (const char* network : {"a", "a", "b"}) add(network);
  letIn(seconds(1), "a");
  EXPECT_EQ(asked, (std::vector<std::string>{"a", "b"})) << "the second one of a full network isn't asked for";
  EXPECT_TRUE(room.has("a"));
  EXPECT_FALSE(room.has("b"));
}

TEST_F(WaitingNewcomers, LeaveAfterTenSeconds) {
  add("a");
  add("a", seconds(1));
  letIn(seconds(9), "a");
  EXPECT_TRUE(refused.empty());
  letIn(seconds(10), "a");
  EXPECT_EQ(refused, std::vector<std::string>{"a"});
  EXPECT_TRUE(room.has("a")) << "the other one came later";
  letIn(seconds(11), "a");
  EXPECT_EQ(refused, (std::vector<std::string>{"a", "a"}));
  EXPECT_FALSE(room.has("a"));
}

}  // namespace
}  // namespace kelvora::server
