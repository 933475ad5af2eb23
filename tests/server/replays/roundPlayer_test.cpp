#include "server/replays/roundPlayer.h"

#include <gtest/gtest.h>

#include <vector>

#include "protocol/frames.h"
#include "tests/support/wireMessage.h"

namespace kelvora::server {
namespace {

using Messages = std::vector<WireMessage>;

class RoundPlayerTest : public testing::Test {
 protected:
  Millis now = 1'000;
  RoundPlayer player{round()};

  static Moments round() {
    Moments round;
    for (const std::int16_t node : {std::int16_t{1}, std::int16_t{2}}) {
      round.add(0, wire::toClient<wire::msgPlayerJoined>(node, node, "P" + std::to_string(node), wire::NumberText{"10"},
                                                         wire::NumberText{"20"}, 1, 0));
    }
    round.add(100, position("30"));
    round.add(200, wire::toClient<wire::msgTailCapture>(1, 2, wire::NumberText{"1"}, wire::NumberText{"1"}));
    round.add(200, wire::toClient<wire::msgFunds>(1, 20));
    round.add(300, wire::toClient<wire::msgRoundOver>("P1 wins."));
    return round;
  }
  static std::string position(const std::string& x) {
    return wire::toClient<wire::msgPosition>(1, wire::NumberText{x}, wire::NumberText{".5"});
  }
  Messages pass(Millis time, bool isWatched = true) {
    Messages sent;
    player.tick(now += time, isWatched, [&](const std::string& frame) { sent.push_back(messageOf(frame)); });
    return sent;
  }
  Messages shown() const {
    Messages sent;
    player.show([&](const std::string& frame) { sent.push_back(messageOf(frame)); });
    return sent;
  }
};

TEST_F(RoundPlayerTest, BeginsWhenSomebodyWatches) {
  EXPECT_TRUE(pass(60'000, false).empty());
  EXPECT_EQ(pass(40).size(), 2U);
  EXPECT_TRUE(pass(99).empty());
  EXPECT_EQ(pass(1), (Messages{{wire::msgPosition, {"1", "30", ".5"}}}));
  EXPECT_EQ(pass(100).size(), 2U);
}

TEST_F(RoundPlayerTest, BeginsAgainAfterAPauseWithoutThePlayers) {
  pass(0);
  const Messages end = pass(300);
  EXPECT_EQ(end.at(3), (WireMessage{wire::msgRoundOver, {"P1 wins."}}));
  EXPECT_EQ(end.at(4), (WireMessage{wire::msgServerText, {"The recording is over. It begins again in 10 seconds."}}));
  EXPECT_TRUE(pass(9'999).empty());
  const Messages again = pass(1);
  ASSERT_EQ(again.size(), 4U);
  EXPECT_EQ(again[0], (WireMessage{wire::msgPlayerLeft, {"1"}}));
  EXPECT_EQ(again[1], (WireMessage{wire::msgPlayerLeft, {"2"}}));
  EXPECT_EQ(again[2].id, wire::msgPlayerJoined);
  EXPECT_EQ(pass(100).size(), 1U);
}

TEST_F(RoundPlayerTest, BeginsAnewOnceNobodyHasWatched) {
  pass(0);
  pass(150);
  pass(40, false);
  const Messages again = pass(40);
  ASSERT_EQ(again.size(), 2U);
  for (const WireMessage& message : again) EXPECT_EQ(message.id, wire::msgPlayerJoined);
}

TEST(RoundPlayerStates, PlayersMayHaveBeenDeadWhenTheRoundWasRecorded) {
  Moments round;
  round.add(0, wire::toClient<wire::msgPlayerJoined>(1, 1, "P", wire::NumberText{"1"}, wire::NumberText{"1"}, 0, 0));
  RoundPlayer player(std::move(round));
  player.tick(1, true, [](const std::string&) {});
  Messages shown;
  player.show([&](const std::string& frame) { shown.push_back(messageOf(frame)); });
  ASSERT_EQ(shown.size(), 3U);
  EXPECT_EQ(shown[1], (WireMessage{wire::msgPlayerJoined, {"1", "1", "P", "1", "1", "0", "0"}}));
}

TEST_F(RoundPlayerTest, ShowsNewcomersThePlayersAsTheyAre) {
  EXPECT_EQ(shown(), (Messages{{wire::msgServerText, {"This is a recording."}}}));
  pass(0);
  pass(200);
  EXPECT_EQ(shown(), (Messages{{wire::msgServerText, {"This is a recording."}},
                               {wire::msgPlayerJoined, {"1", "1", "P1", "30", ".5", "1", "1"}},
                               {wire::msgFunds, {"1", "20"}},
                               {wire::msgPlayerJoined, {"2", "2", "P2", "10", "20", "0", "0"}},
                               {wire::msgFunds, {"2", "0"}}}));
  pass(100);
  EXPECT_EQ(shown().at(1).fields.at(5), "0") << "the round is over";
}

TEST_F(RoundPlayerTest, GoesOnWhereASuspendedServerWas) {
  pass(0);
  EXPECT_EQ(pass(3'600'000).size(), 5U) << "a second has passed";
  EXPECT_TRUE(pass(9'999).empty());
}

TEST(RoundPlayerBounds, ManyMessagesAtOnceAreSpread) {
  Moments round;
  const std::string line = wire::toClient<wire::msgServerText>(std::string(1'000, 'x'));
  for (int i = 0; i < 100; ++i) round.add(0, line);
  RoundPlayer player(std::move(round));
  std::size_t sent = 0;
  player.tick(1, true, [&](const std::string& frame) { sent += frame.size(); });
  EXPECT_LE(sent, RoundPlayer::maxBurst + line.size());
  EXPECT_GT(sent, 0U);
}

TEST(RoundPlayerBounds, AnEmptyRoundIsOverAtOnce) {
  RoundPlayer player{Moments()};
  std::size_t sent = 0;
  for (Millis now = 0; now < 25'000; now += 40) player.tick(now, true, [&](const std::string&) { ++sent; });
  EXPECT_EQ(sent, 3U) << "at 0, 10 and 20 seconds";
}

TEST(RoundPlayerBounds, ForgedFilesShowNoMorePlayersThanAnArenaHas) {
  Moments round;
  for (std::int16_t node = 1; node < 100; ++node) {
    round.add(0,
              wire::toClient<wire::msgPlayerJoined>(node, 1, "P", wire::NumberText{"1"}, wire::NumberText{"1"}, 1, 0));
  }
  RoundPlayer player(std::move(round));
  player.tick(1, true, [](const std::string&) {});
  std::size_t shown = 0;
  player.show([&](const std::string&) { ++shown; });
  EXPECT_EQ(shown, 1U + 2 * 6);
}

}  // namespace
}  // namespace kelvora::server
