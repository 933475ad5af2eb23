// Death, respawn and the waits between them.

#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

class LivesTest : public ArenaTest {
 protected:
  explicit LivesTest(const ArenaRules& rules = quietRules) : ArenaTest(rules) {}

  void begin() {
    login(ann, "Ann");
    login(bob, "Bob", "1");
  }
};

TEST_F(LivesTest, OnlyTheDeadRespawn) {
  begin();
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_EQ(got, (std::map<ClientId, std::vector<Message>>{{ann, {{wire::msgSpawnDenied, {""}}}}}));
  got.clear();
  capture(bob, ann);
  now += 3'000;
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_EQ(got[ann], (std::vector<Message>{{wire::msgRespawn, {"1"}}}));
  EXPECT_EQ(got[bob], got[ann]);
  got.clear();
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_EQ(got[ann].at(0).id, wire::msgSpawnDenied);
}

TEST_F(LivesTest, ARequestThatComesTooEarlyIsGrantedWhenItIsDue) {
  begin();
  capture(bob, ann);
  now += 500;
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_EQ(got, (std::map<ClientId, std::vector<Message>>{
                     {ann, {{wire::msgServerText, {"You will be respawned in 3 seconds."}}}}}));
  got.clear();
  pass(2'499);
  EXPECT_TRUE(all(bob, wire::msgRespawn).empty());
  pass(1);
  EXPECT_EQ(all(ann, wire::msgRespawn), (std::vector<Fields>{{"1"}}));
  EXPECT_EQ(all(bob, wire::msgRespawn), (std::vector<Fields>{{"1"}}));
  got.clear();
  pass(5'000);
  EXPECT_TRUE(all(ann, wire::msgRespawn).empty()) << "once";
}

TEST_F(LivesTest, WithoutARequestNobodyIsRespawned) {
  begin();
  capture(bob, ann);
  for (int i = 0; i < 100; ++i) pass(1'000);
  EXPECT_TRUE(all(ann, wire::msgRespawn).empty());
}

TEST_F(LivesTest, AGhostIsToldOnceThatRespawningIsPossible) {
  begin();
  capture(bob, ann);
  pass(2'999);
  EXPECT_TRUE(all(ann, wire::msgServerText).empty());
  pass(1);
  EXPECT_EQ(all(ann, wire::msgServerText), (std::vector<Fields>{{"Press Spawn for a new life."}}));
  EXPECT_TRUE(all(bob, wire::msgServerText).empty());
  pass(10'000);
  EXPECT_EQ(all(ann, wire::msgServerText).size(), 1U);
}

TEST_F(LivesTest, PlayersWithAPendingRequestAreNotInvited) {
  begin();
  capture(bob, ann);
  say(ann, wire::msgSpawnRequest, {""});
  got.clear();
  pass(3'000);
  EXPECT_EQ(all(ann, wire::msgRespawn).size(), 1U);
  pass(10'000);
  EXPECT_TRUE(all(ann, wire::msgServerText).empty());
}

TEST_F(LivesTest, RequestFromThePreviousLifeIsForgotten) {
  begin();
  capture(bob, ann);
  say(ann, wire::msgSpawnRequest, {""});
  pass(3'000);
  ASSERT_TRUE(view(ann).isAlive);
  capture(bob, ann);
  pass(10'000);
  EXPECT_FALSE(view(ann).isAlive);
}

TEST_F(LivesTest, KillsSurviveDeathAndRespawn) {
  begin();
  capture(ann, bob);
  pass(3'000);
  say(bob, wire::msgSpawnRequest, {""});
  capture(bob, ann);
  pass(3'000);
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_EQ(view(ann).kills, 1);
  EXPECT_EQ(view(bob).kills, 1);
}

class LongWaitTest : public LivesTest {
 protected:
  static ArenaRules longWait() {
    ArenaRules rules = quietRules;
    rules.respawnWaitMs = 10'000;
    return rules;
  }
  LongWaitTest() : LivesTest(longWait()) {}
};

TEST_F(LongWaitTest, OperatorSetsTheWait) {
  begin();
  capture(bob, ann);
  say(ann, wire::msgSpawnRequest, {""});
  EXPECT_EQ(got[ann].at(0).fields.at(0), "You will be respawned in 10 seconds.");
  pass(9'999);
  EXPECT_FALSE(view(ann).isAlive);
  pass(1);
  EXPECT_TRUE(view(ann).isAlive);
}

}  // namespace
}  // namespace kelvora::server
