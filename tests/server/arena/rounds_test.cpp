#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

/// Rounds of a minute, three captures to win, intermissions of ten seconds.
const ArenaRules shortRounds{.roundMs = 60'000,
                             .captureGoal = 3,
                             .intermissionMs = 10'000,
                             .survivalCredits = 7,
                             .incomePerMinute = 0,
                             .speedFactor = 0};

class RoundsTest : public ArenaTest {
 protected:
  explicit RoundsTest(const ArenaRules& rules = shortRounds) : ArenaTest(rules) {}

  /// Ann has node 1, Bob 2, Cat 3.
  void begin() {
    login(ann, "Ann");
    login(bob, "Bob", "1");
    login(cat, "Cat", "2");
  }
  /// Captures, then respawns the loser as soon as possible.
  void captureAndRespawn(ClientId winner, ClientId loser) {
    capture(winner, loser);
    say(loser, wire::msgSpawnRequest, {""});
    pass(3'000);
    ASSERT_TRUE(view(loser).isAlive);
    got.clear();
  }
  std::string result() {
    const auto texts = all(cat, wire::msgRoundOver);
    EXPECT_EQ(texts.size(), 1U);
    return texts.empty() ? "" : texts[0].at(0);
  }
};

TEST_F(RoundsTest, ARoundEndsWhenItsTimeIsUp) {
  begin();
  pass(59'999);
  EXPECT_TRUE(arena.isRoundRunning());
  EXPECT_TRUE(all(ann, wire::msgRoundOver).empty());
  pass(1);
  EXPECT_FALSE(arena.isRoundRunning());
  EXPECT_EQ(result(), "The round is over. Nobody has captured anybody.");
  for (const ClientId client : {ann, bob, cat}) {
    EXPECT_EQ(all(client, wire::msgRoundOver).size(), 1U);
    EXPECT_EQ(all(client, wire::msgServerText), (std::vector<Fields>{{"The next round begins in 10 seconds."}}));
    EXPECT_EQ(all(client, wire::msgAliveState), (std::vector<Fields>{{std::to_string(client), "0"}}))
        << "for a client with an open store";
    EXPECT_EQ(got[client].back().id, wire::msgAliveState);
    EXPECT_FALSE(view(client).isAlive);
  }
}

TEST_F(RoundsTest, ItEndsWithTheCaptureThatReachesTheGoal) {
  begin();
  captureAndRespawn(ann, bob);
  captureAndRespawn(ann, bob);
  capture(ann, cat);
  EXPECT_FALSE(arena.isRoundRunning());
  EXPECT_FALSE(view(ann).isAlive);
}

TEST_F(RoundsTest, TheTextNamesTheWinner) {
  begin();
  captureAndRespawn(ann, bob);
  captureAndRespawn(bob, cat);
  captureAndRespawn(bob, cat);
  report(ann, 20'000, 20'000);
  circle(bob, 20'000, 20'000);
  EXPECT_EQ(result(), "Bob wins the round with 3 captures!");
}

TEST_F(RoundsTest, OneCaptureIsSingular) {
  begin();
  captureAndRespawn(cat, bob);
  pass(60'000);
  EXPECT_EQ(result(), "Cat wins the round with 1 capture!");
}

TEST_F(RoundsTest, TieGoesToTheEarlierPlayer) {
  begin();
  captureAndRespawn(ann, cat);
  captureAndRespawn(bob, cat);
  captureAndRespawn(bob, cat);
  captureAndRespawn(ann, cat);
  pass(60'000);
  EXPECT_EQ(result(), "Bob wins the round with 2 captures!");
}

TEST_F(RoundsTest, DepartedPlayersDoNotWin) {
  begin();
  captureAndRespawn(ann, bob);
  arena.disconnected(ann);
  pass(60'000);
  EXPECT_EQ(result(), "The round is over. Nobody has captured anybody.");
}

TEST_F(RoundsTest, SurvivorsAreCredited) {
  begin();
  pass(59'000);
  capture(ann, bob);
  EXPECT_EQ(view(ann).funds, 20);
  pass(1'000);
  EXPECT_EQ(view(ann).funds, 27);
  EXPECT_EQ(view(bob).funds, 10);
  EXPECT_EQ(view(cat).funds, 17);
  EXPECT_EQ(all(bob, wire::msgFunds), (std::vector<Fields>{{"1", "27"}, {"3", "17"}}));
  EXPECT_EQ(got[bob].at(0).id, wire::msgFunds) << "before the end of the round";
}

TEST_F(RoundsTest, NobodyLivesInTheIntermissionAndRequestsWaitForItsEnd) {
  begin();
  pass(60'000);
  got.clear();
  pass(1'500);
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_EQ(all(ann, wire::msgServerText), (std::vector<Fields>{{"You will be respawned in 9 seconds."}}));
  pass(8'499);
  EXPECT_FALSE(arena.isRoundRunning());
  EXPECT_TRUE(all(bob, wire::msgRespawn).empty());
  got.clear();
  pass(1);
  EXPECT_TRUE(arena.isRoundRunning());
  EXPECT_EQ(got[bob], (std::vector<Message>{{wire::msgServerText, {"A new round has begun. Press Spawn to play."}},
                                            {wire::msgRespawn, {"1"}}}));
  EXPECT_FALSE(view(bob).isAlive);
  say(bob, wire::msgSpawnRequest, {""});
  EXPECT_TRUE(view(bob).isAlive) << "from then on at once";
}

TEST_F(RoundsTest, ARequestFromBeforeTheEndIsNotForgotten) {
  begin();
  pass(59'000);
  capture(ann, bob);
  say(bob, wire::msgSpawnRequest, {""});
  pass(1'000);
  ASSERT_FALSE(arena.isRoundRunning());
  pass(10'000);
  EXPECT_TRUE(view(bob).isAlive);
}

TEST_F(RoundsTest, RoundCountRestartsButKillsRemain) {
  begin();
  captureAndRespawn(ann, bob);
  captureAndRespawn(ann, bob);
  pass(60'000);
  EXPECT_EQ(view(ann).roundCaptures, 2);
  pass(10'000);
  EXPECT_EQ(view(ann).roundCaptures, 0);
  EXPECT_EQ(view(ann).kills, 2);
  for (const ClientId client : {ann, bob}) say(client, wire::msgSpawnRequest, {""});
  capture(ann, bob);
  EXPECT_TRUE(arena.isRoundRunning()) << "the third of all, the first of this round";
}

TEST_F(RoundsTest, NewcomerInAnIntermissionIsDeadAndToldWhenItEnds) {
  begin();
  pass(60'000);
  pass(2'100);
  arena.disconnected(cat);
  got.clear();
  arena.connected(4, now);
  say(4, wire::msgLogin, {"Dan", "", "3", KELVORA_VERSION});
  std::vector<int> ids;
  for (const Message& message : got[4]) ids.push_back(message.id);
  EXPECT_EQ(ids, (std::vector<int>{wire::msgLoginAccepted, wire::msgPlayerJoined, wire::msgFunds, wire::msgPlayerJoined,
                                   wire::msgFunds, wire::msgRoundOver, wire::msgAliveState, wire::msgFunds}));
  for (const Fields& joined : all(4, wire::msgPlayerJoined)) EXPECT_EQ(joined.at(5), "0");
  EXPECT_EQ(all(4, wire::msgRoundOver), (std::vector<Fields>{{"The next round begins in 8 seconds."}}));
  EXPECT_EQ(all(4, wire::msgAliveState), (std::vector<Fields>{{"4", "0"}}));
  EXPECT_EQ(all(ann, wire::msgPlayerJoined).at(0).at(5), "0");
  EXPECT_FALSE(view(4).isAlive);
}

TEST_F(RoundsTest, TheFirstPlayerStartsARound) {
  begin();
  pass(50'000);
  for (const ClientId client : {ann, bob, cat}) arena.disconnected(client);
  pass(500'000);
  login(cat, "Cat");
  pass(59'999);
  EXPECT_TRUE(arena.isRoundRunning());
  pass(1);
  EXPECT_FALSE(arena.isRoundRunning());
  arena.disconnected(cat);
  pass(500'000);
  EXPECT_FALSE(arena.isRoundRunning()) << "the clock stops while nobody is in";
  login(ann, "Ann");
  EXPECT_TRUE(arena.isRoundRunning()) << "newcomers don't wait for the end of others' intermission";
  EXPECT_TRUE(view(ann).isAlive);
  login(bob, "Bob");
  pass(59'999);
  EXPECT_TRUE(arena.isRoundRunning()) << "the second player hasn't restarted it";
  pass(1);
  EXPECT_FALSE(arena.isRoundRunning());
}

TEST_F(RoundsTest, BotsDoNotRunTheClock) {
  login(firstBotClient, "Bot");
  pass(500'000);
  EXPECT_TRUE(arena.isRoundRunning());
  login(ann, "Ann", "1");
  pass(59'999);
  EXPECT_TRUE(arena.isRoundRunning());
  pass(1);
  EXPECT_FALSE(arena.isRoundRunning());
}

class EndlessTest : public RoundsTest {
 protected:
  static ArenaRules endless() {
    ArenaRules rules = shortRounds;
    rules.captureGoal = 0;
    rules.intermissionMs = 0;
    return rules;
  }
  EndlessTest() : RoundsTest(endless()) {}
};

TEST_F(EndlessTest, WithoutAGoalOnlyTimeEndsARound) {
  begin();
  for (int i = 0; i < 5; ++i) captureAndRespawn(ann, bob);
  EXPECT_TRUE(arena.isRoundRunning());
}

TEST_F(EndlessTest, IntermissionMayBeZero) {
  begin();
  pass(60'000);
  EXPECT_FALSE(arena.isRoundRunning());
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_EQ(all(ann, wire::msgServerText), (std::vector<Fields>{{"You will be respawned in 1 second."}}));
  pass(1);
  EXPECT_TRUE(arena.isRoundRunning());
  EXPECT_TRUE(view(ann).isAlive);
}

}  // namespace
}  // namespace kelvora::server
