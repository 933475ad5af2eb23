// People can join even if bots fill the arena or have their colour.

#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

class WaitingLogins : public ArenaTest {
 protected:
  void ask(ClientId client, const std::string& colour) {
    arena.connected(client, now);
    say(client, wire::msgLogin, {"Ann", "", colour, KELVORA_VERSION});
  }
  bool isIn(ClientId client) {
    return std::ranges::any_of(got[client],
                               [](const Message& message) { return message.id == wire::msgLoginAccepted; });
  }
  /// Six bots, in the colours 0 to 5.
  void fillUp() {
    for (ClientId i = 0; i < 6; ++i) login(firstBotClient + i, "Bot", std::to_string(i));
  }
};

TEST_F(WaitingLogins, ColourHeldByABotIsWaitedFor) {
  login(firstBotClient, "Bot", "3");
  ask(ann, "3");
  EXPECT_TRUE(got[ann].empty());
  EXPECT_EQ(arena.wantedColours(), (std::vector<PlayerColour>{cyanPlayer}));
  arena.disconnected(firstBotClient);
  now += 40;
  arena.tick(now);
  EXPECT_EQ(got[ann].at(0).id, wire::msgLoginAccepted);
  EXPECT_EQ(got[ann].at(0).fields.at(0), "3");
  EXPECT_TRUE(arena.wantedColours().empty());
}

TEST_F(WaitingLogins, AfterThreeSecondsAnotherColourIsUsed) {
  login(firstBotClient, "Bot", "0");
  ask(ann, "0");
  now += 2'960;
  arena.tick(now);
  EXPECT_FALSE(isIn(ann));
  now += 40;
  arena.tick(now);
  EXPECT_TRUE(isIn(ann));
  EXPECT_EQ(got[ann].at(0).fields.at(0), "1");
}

TEST_F(WaitingLogins, FullArenaIsWaitedForUntilTheLoginTimesOut) {
  fillUp();
  ask(ann, "9");
  EXPECT_EQ(arena.wantedColours().size(), 1U);
  now += 9'960;
  arena.tick(now);
  EXPECT_TRUE(got[ann].empty() || got[ann].back().id != wire::msgLoginDenied);
  now += 40;
  arena.tick(now);
  EXPECT_EQ(got[ann].back(), (Message{wire::msgLoginDenied, {"The arena is full."}}));
  EXPECT_TRUE(hungUp.contains(ann));
}

TEST_F(WaitingLogins, InAFullArenaTheBotWithTheWantedColourLeaves) {
  fillUp();
  ask(ann, "4");
  EXPECT_EQ(arena.wantedColours(), (std::vector<PlayerColour>{bluePlayer}));
  arena.disconnected(firstBotClient + 4);
  arena.tick(now);
  EXPECT_TRUE(isIn(ann));
}

TEST_F(WaitingLogins, ArenaFullOfPeopleIsNotWaitedFor) {
  for (ClientId i = 1; i <= 6; ++i) login(i, "Bob", "0");
  EXPECT_EQ(refusal(arena, {"Ann", "", "0", KELVORA_VERSION}), "The arena is full.");
}

TEST_F(WaitingLogins, ABotDisplacesNobody) {
  fillUp();
  EXPECT_TRUE(arena.wantedColours().empty());
  ask(firstBotClient + 6, "2");
  EXPECT_EQ(got[firstBotClient + 6].at(0), (Message{wire::msgLoginDenied, {"The arena is full."}}));
}

TEST_F(WaitingLogins, HangingUpEndsTheWait) {
  login(firstBotClient, "Bot", "3");
  ask(ann, "3");
  arena.disconnected(ann);
  EXPECT_TRUE(arena.wantedColours().empty());
  now += 40;
  arena.tick(now);
  EXPECT_EQ(arena.playerCount(), 1U);
}

TEST_F(WaitingLogins, ASecondLoginMeanwhileIsIgnored) {
  login(firstBotClient, "Bot", "3");
  ask(ann, "3");
  say(ann, wire::msgLogin, {"Eve", "", "5", KELVORA_VERSION});
  EXPECT_FALSE(isIn(ann));
  EXPECT_EQ(arena.playerCount(), 1U);
}

}  // namespace
}  // namespace kelvora::server
