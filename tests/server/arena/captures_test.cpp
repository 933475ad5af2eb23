// Captures by a tail's loops, and the messages that make every client carry them out.

#include "server/arena/tail.h"
#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

class CapturesTest : public ArenaTest {
 protected:
  explicit CapturesTest(const ArenaRules& rules = quietRules) : ArenaTest(rules) {}

  /// Ann has node 1, Bob 2, Cat 3, Dan 4.
  void begin() {
    login(ann, "Ann");
    login(bob, "Bob", "1");
    login(cat, "Cat", "2");
    login(dan, "Dan", "3");
  }
  /// Each capture's winner, loser, x and y.
  std::vector<Fields> told() { return all(dan, wire::msgTailCapture); }

  static constexpr ClientId dan = 4;
};

TEST_F(CapturesTest, PlayersInsideAreCapturedAtTheOldestVertexOfTheLoop) {
  begin();
  report(bob, 50'000, 50'000);
  report(cat, 53'000, 50'000);
  report(dan, 60'000, 60'000);
  say(ann, wire::msgPositionReport, {"48800", "49000"});
  say(ann, wire::msgPositionReport, {"5.1E+04", "49000"});
  report(ann, 51'000, 51'000);
  report(ann, 49'000, 51'000);
  EXPECT_TRUE(told().empty());
  got.clear();
  report(ann, 49'000, 48'800);
  const std::vector<Message> expected{{wire::msgPosition, {"1", "49000", "48800"}},
                                      {wire::msgTailCapture, {"1", "2", "5.1E+04", "49000"}},
                                      {wire::msgFunds, {"1", "20"}}};
  for (const ClientId client : {ann, bob, cat, dan}) EXPECT_EQ(got[client], expected) << "with its exact text";
  EXPECT_FALSE(view(bob).isAlive);
  EXPECT_TRUE(view(cat).isAlive);
  EXPECT_EQ(view(ann).kills, 1);
  EXPECT_EQ(view(ann).roundCaptures, 1);
  EXPECT_EQ(view(bob).kills, 0);
}

TEST_F(CapturesTest, PlayersOnTheLoopAreNotCaptured) {
  begin();
  report(bob, 50'000, 49'000);
  report(cat, 51'000, 50'000);
  circle(ann, 50'000, 50'000);
  EXPECT_TRUE(told().empty());
}

TEST_F(CapturesTest, AShieldDoesNotHelp) {
  begin();
  capture(bob, dan);  // to earn credits
  say(bob, wire::msgBuyRequest, {"0"});
  say(bob, wire::msgActivateRequest, {"0"});
  ASSERT_TRUE(view(bob).isRunning[shieldSlot]);
  report(bob, 20'000, 20'000);
  circle(ann, 20'000, 20'000);
  EXPECT_FALSE(view(bob).isAlive);
}

TEST_F(CapturesTest, AllInsideAreCapturedAtTheSameVertex) {
  begin();
  report(cat, 50'000, 50'500);
  report(bob, 50'000, 50'000);
  circle(ann, 50'000, 50'000);
  EXPECT_EQ(told(), (std::vector<Fields>{{"1", "2", "51000", "49000"}, {"1", "3", "51000", "49000"}}));
  EXPECT_EQ(view(ann).kills, 2);
  EXPECT_EQ(view(ann).funds, 30);
}

TEST_F(CapturesTest, WhileOneIsPendingItsWinnerNamesTheSameVertex) {
  begin();
  report(bob, 50'000, 50'000);
  report(cat, 20'000, 20'000);
  report(dan, 80'000, 80'000);
  circle(ann, 50'000, 50'000);
  pass(2'999);
  circle(ann, 20'000, 20'000);
  EXPECT_EQ(told(), (std::vector<Fields>{{"1", "2", "51000", "49000"}, {"1", "3", "51000", "49000"}}));
  pass(2'999);
  circle(ann, 80'000, 80'000);
  EXPECT_EQ(told().back(), (Fields{"1", "4", "51000", "49000"})) << "the second one waits in its turn";
}

TEST_F(CapturesTest, OnceOneHasLandedTheNextNamesItsOwnVertex) {
  begin();
  report(bob, 50'000, 50'000);
  report(cat, 20'000, 20'000);
  circle(ann, 50'000, 50'000);
  pass(3'000);
  circle(ann, 20'000, 20'000);
  EXPECT_EQ(told().back(), (Fields{"1", "3", "21000", "19000"}));
}

TEST_F(CapturesTest, TwoWinnersNeverNameTheSameCoordinates) {
  begin();
  report(bob, 50'000, 50'000);
  report(cat, 50'000, 50'000);
  for (const auto& [x, y] : {std::pair{48'800, 49'000}, {51'000, 49'000}, {51'000, 51'000}, {49'000, 51'000}}) {
    report(ann, x, y);
    report(dan, x, y);
  }
  // Ann's loop captures Bob and Cat. Bob respawns before Dan closes a loop of the same vertices.
  report(ann, 49'000, 48'800);
  EXPECT_EQ(told(), (std::vector<Fields>{{"1", "2", "51000", "49000"}, {"1", "3", "51000", "49000"}}));
  login(5, "Eve", "4");
  report(5, 50'000, 50'000);
  report(dan, 49'000, 48'800);
  EXPECT_EQ(told(), (std::vector<Fields>{{"4", "5", "51000", "51000"}}));
}

TEST_F(CapturesTest, NoVertexIsNamedIfAllAreTaken) {
  begin();
  login(5, "Eve", "4");
  login(6, "Flo", "5");
  for (const ClientId winner : {ann, cat, 5U}) {
    report(winner, 48'800, 49'000);
    report(winner, 51'000, 49'000);
    report(winner, 51'000, 51'000);
  }
  // Three identical triangles: the first two captures name its two vertices, and none is left for the third.
  for (const auto& [winner, loser] : {std::pair{ann, bob}, {cat, 4U}, {5U, 6U}}) {
    report(loser, 50'800, 49'500);
    report(winner, 49'000, 48'000);
  }
  EXPECT_EQ(told(),
            (std::vector<Fields>{
                {"1", "2", "51000", "49000"}, {"3", "4", "51000", "51000"}, {"5", "6", "-1000000", "-1000000"}}));
}

TEST_F(CapturesTest, TheDeadNeitherCaptureNorAreCaptured) {
  begin();
  capture(ann, bob);
  report(cat, 20'000, 20'000);
  circle(bob, 20'000, 20'000);
  EXPECT_TRUE(told().empty()) << "Bob is dead";
  circle(cat, 50'000, 50'000);
  report(bob, 30'000, 30'000);
  circle(cat, 30'000, 30'000);
  EXPECT_TRUE(told().empty()) << "Bob has been captured already";
  EXPECT_EQ(all(dan, wire::msgPosition).size(), 17U) << "but clients see Bob fly on";
}

TEST_F(CapturesTest, NewLifeStartsANewTail) {
  begin();
  report(bob, 48'800, 49'000);
  report(bob, 51'000, 49'000);
  report(cat, 51'000, 49'000);
  circle(ann, 51'000, 49'000);
  ASSERT_FALSE(view(bob).isAlive);
  EXPECT_TRUE(view(bob).tail.empty());
  now += 3'000;
  say(bob, wire::msgSpawnRequest, {""});
  ASSERT_TRUE(view(bob).isAlive);
  report(bob, 51'000, 51'000);
  EXPECT_EQ(view(bob).tail, (std::vector<Point>{{51'000, 51'000}}));
}

TEST_F(CapturesTest, AVertexLivesForTwoSeconds) {
  begin();
  report(bob, 50'000, 50'000);
  for (const auto& [x, y] : {std::pair{48'800, 49'000}, {51'000, 49'000}, {51'000, 51'000}, {49'000, 51'000}}) {
    report(ann, x, y);
    now += 500;
  }
  report(ann, 49'000, 48'800);
  EXPECT_TRUE(told().empty()) << "the first vertex has just expired, and with it the first segment";
  now += 10'000;
  for (const auto& [x, y] : {std::pair{48'800, 49'000}, {51'000, 49'000}, {51'000, 51'000}, {49'000, 51'000}}) {
    report(ann, x, y);
    now += 499;
  }
  report(ann, 49'000, 48'800);
  EXPECT_EQ(told().size(), 1U);
}

TEST_F(CapturesTest, SameSpotTwiceIsOneVertex) {
  begin();
  report(ann, 10'000, 10'000);
  report(ann, 10'000, 10'000);
  say(ann, wire::msgPositionReport, {"1E+04", "10000"});
  EXPECT_EQ(view(ann).tail.size(), 1U);
  EXPECT_EQ(all(bob, wire::msgPosition).size(), 3U) << "it is still relayed";
}

TEST_F(CapturesTest, LoserDoesNotRespawnBeforeItHasLanded) {
  begin();
  capture(ann, bob);
  now += 2'999;
  say(bob, wire::msgSpawnRequest, {""});
  EXPECT_EQ(got[bob], (std::vector<Message>{{wire::msgServerText, {"You will be respawned in 1 second."}}}));
  got.clear();
  pass(1);
  EXPECT_EQ(all(dan, wire::msgRespawn), (std::vector<Fields>{{"2"}}));
}

class NoWaitTest : public CapturesTest {
 protected:
  static ArenaRules noWait() {
    ArenaRules rules = quietRulesWithIncome(60);
    rules.respawnWaitMs = 0;
    return rules;
  }
  NoWaitTest() : CapturesTest(noWait()) {}

  /// Ann buys and starts an extended tail.
  void extend() {
    say(ann, wire::msgBuyRequest, {"3"});
    say(ann, wire::msgActivateRequest, {"3"});
    ASSERT_TRUE(view(ann).isRunning[extendedTailSlot]);
  }
  /// Bob's time until respawn after an immediate request, in ms.
  Millis wait() {
    say(bob, wire::msgSpawnRequest, {""});
    const Millis asked = now;
    while (!view(bob).isAlive && now - asked < 30'000) pass(1);
    return now - asked;
  }
};

TEST_F(NoWaitTest, ALandingTakesThreeSeconds) {
  begin();
  capture(ann, bob);
  EXPECT_EQ(wait(), 3'000);
}

TEST_F(NoWaitTest, RunningExtendedTailDelaysItToItsEnd) {
  begin();
  pass(50'000);
  extend();
  now += 1'000;
  capture(ann, bob);
  EXPECT_EQ(wait(), 4'000 + 3'000);
}

TEST_F(NoWaitTest, SoDoesOneThatStartsMeanwhile) {
  begin();
  pass(50'000);
  capture(ann, bob);
  now += 1'000;
  extend();
  EXPECT_EQ(wait(), 5'000 + 3'000);
}

TEST_F(NoWaitTest, ButASecondOneDoesNot) {
  begin();
  pass(100'000);
  capture(ann, bob);
  extend();
  pass(5'000);
  extend();
  EXPECT_EQ(wait(), 3'000);
}

TEST_F(CapturesTest, ExtendedTailsKeepTheirVertices) {
  begin();
  capture(ann, dan);
  say(ann, wire::msgBuyRequest, {"3"});
  pass(10'000);
  report(ann, 10'000, 10'000);
  now += 1'999;
  say(ann, wire::msgActivateRequest, {"3"});
  now += 1'000;
  report(ann, 12'000, 10'000);
  pass(3'999);
  EXPECT_EQ(view(ann).tail.size(), 2U);
  pass(1);
  EXPECT_EQ(view(ann).tail, (std::vector<Point>{{12'000, 10'000}}))
      << "five seconds: vertices that had aged before expire at once";
  pass(1'999);
  EXPECT_EQ(view(ann).tail.size(), 1U) << "vertices laid meanwhile have their whole lifetime left";
  pass(1);
  EXPECT_TRUE(view(ann).tail.empty());
}

TEST_F(CapturesTest, DeparturesAreAnnouncedOnceTheirCapturesHaveLanded) {
  for (const ClientId leaver : {ann, bob}) {
    begin();
    capture(ann, bob);
    arena.disconnected(leaver);
    EXPECT_EQ(arena.playerCount(), 3U);
    pass(2'999);
    EXPECT_TRUE(all(dan, wire::msgPlayerLeft).empty());
    pass(1);
    ASSERT_EQ(all(dan, wire::msgPlayerLeft).size(), 1U);
    for (const ClientId client : {ann, bob, cat, dan}) arena.disconnected(client);
    pass(10'000);
    got.clear();
  }
}

TEST_F(CapturesTest, LingeringPlayersAreOutOfTheGame) {
  begin();
  capture(ann, bob);
  report(ann, 50'000, 50'000);
  arena.disconnected(ann);
  got.clear();
  circle(cat, 50'000, 50'000);
  EXPECT_TRUE(told().empty());
  say(cat, wire::msgChat, {"1", "hello"});
  EXPECT_EQ(all(cat, wire::msgServerText), (std::vector<Fields>{{"That player is not here."}}));
}

TEST_F(CapturesTest, LingeringPlayersKeepColourAndNodeAndAreShownToNewcomers) {
  begin();
  capture(ann, bob);
  arena.disconnected(bob);
  got.clear();
  arena.connected(5, now);
  say(5, wire::msgLogin, {"Eve", "", "1", KELVORA_VERSION});
  pass(1);
  EXPECT_TRUE(got[5].empty()) << "the colour that Ann wants is about to be free";
  pass(2'999);
  EXPECT_EQ(all(5, wire::msgLoginAccepted).at(0).at(0), "1");
  EXPECT_EQ(all(5, wire::msgPlayerLeft).size(), 0U) << "she was never told about him";

  capture(ann, cat);
  arena.disconnected(cat);
  got.clear();
  arena.connected(6, now);
  say(6, wire::msgLogin, {"Flo", "", "5", KELVORA_VERSION});
  const auto joined = all(6, wire::msgPlayerJoined);
  ASSERT_EQ(joined.size(), 4U);
  EXPECT_EQ(joined.at(0).at(2), "Cat");
  EXPECT_EQ(joined.at(0).at(5), "0") << "dead";
  pass(3'000);
  EXPECT_EQ(all(6, wire::msgPlayerLeft), (std::vector<Fields>{{"3"}}));
}

TEST_F(CapturesTest, AFullArenaWaitsForLingeringPlayers) {
  begin();
  login(5, "Eve");
  login(6, "Flo");
  capture(ann, bob);
  arena.disconnected(bob);
  got.clear();
  arena.connected(7, now);
  say(7, wire::msgLogin, {"Guy", "", "0", KELVORA_VERSION});
  pass(2'999);
  EXPECT_TRUE(got[7].empty());
  pass(1);
  EXPECT_EQ(all(7, wire::msgLoginAccepted).at(0).at(0), "1");
}

}  // namespace
}  // namespace kelvora::server
