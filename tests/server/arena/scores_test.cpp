// The arena's reports of people's rounds, and its questions about their names.

#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

class ScoresTest : public ArenaTest {
 protected:
  struct Told {
    std::vector<Score> scores;
    bool isRoundOver;
  };
  std::vector<Told> told;
  NameVerdict verdict;
  std::vector<std::pair<std::string, std::string>> asked;  // name and password

  void scored(const std::vector<Score>& scores, bool isRoundOver) override { told.push_back({scores, isRoundOver}); }
  NameVerdict nameVerdict(ClientId, const std::string& name, const std::string& password) override {
    asked.emplace_back(name, password);
    return verdict;
  }
};

TEST_F(ScoresTest, AreToldForAllPeopleWhenTheRoundIsOver) {
  login(ann, "Ann", "0");
  now += 1'000;
  login(bob, "Bob", "1");
  login(firstBotClient, "Lumo", "2");
  capture(bob, ann);
  arena.endRound();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_TRUE(told[0].isRoundOver);
  ASSERT_EQ(told[0].scores.size(), 2U) << "people only";
  const Score& first = told[0].scores[0];
  const Score& second = told[0].scores[1];
  EXPECT_EQ(first.name, "Ann");
  EXPECT_EQ(first.captures, 0);
  EXPECT_FALSE(first.isWinner);
  EXPECT_EQ(first.joined, 5'000);
  EXPECT_EQ(second.client, bob);
  EXPECT_EQ(second.captures, 1);
  EXPECT_TRUE(second.isWinner);
  EXPECT_EQ(second.joined, 6'000);
}

TEST_F(ScoresTest, OfAPlayerWhoLeavesAreToldAtOnce) {
  login(ann, "Ann", "0");
  login(bob, "Bob", "1");
  capture(ann, bob);
  arena.disconnected(ann);
  ASSERT_EQ(told.size(), 1U);
  EXPECT_FALSE(told[0].isRoundOver);
  ASSERT_EQ(told[0].scores.size(), 1U);
  EXPECT_EQ(told[0].scores[0].captures, 1);
  EXPECT_FALSE(told[0].scores[0].isWinner);
}

TEST_F(ScoresTest, AreNotToldTwice) {
  login(ann, "Ann", "0");
  login(bob, "Bob", "1");
  capture(ann, bob);
  arena.endRound();
  arena.disconnected(ann);
  EXPECT_EQ(told.size(), 1U) << "she leaves in the intermission";
}

TEST_F(ScoresTest, OfABrokenOffRoundHaveNoWinner) {
  login(ann, "Ann", "0");
  login(bob, "Bob", "1");
  capture(ann, bob);
  arena.restartRound();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].scores[0].captures, 1);
  EXPECT_FALSE(told[0].scores[0].isWinner);
  EXPECT_EQ(view(ann).roundCaptures, 0);
}

TEST_F(ScoresTest, OfBotsAreNotTold) {
  login(firstBotClient, "Lumo");
  arena.disconnected(firstBotClient);
  EXPECT_TRUE(told.empty());
}

TEST_F(ScoresTest, ALoginWaitsForTheVerdictOnItsName) {
  verdict.isPending = true;
  arena.connected(ann, now);
  say(ann, wire::msgLogin, {" Ann ", "secret", "0", KELVORA_VERSION});
  pass(1'000);
  EXPECT_EQ(arena.playerCount(), 0U);
  EXPECT_TRUE(got[ann].empty());
  EXPECT_EQ(asked.front(), std::pair(std::string("Ann"), std::string("secret")));
  verdict.isPending = false;
  pass(40);
  EXPECT_EQ(got[ann].at(0).id, wire::msgLoginAccepted);
}

TEST_F(ScoresTest, AVerdictThatTakesTooLongIsARefusal) {
  verdict.isPending = true;
  arena.connected(ann, now);
  say(ann, wire::msgLogin, {"Ann", "", "0", KELVORA_VERSION});
  pass(10'000);
  EXPECT_EQ(got[ann].at(0), (Message{wire::msgLoginDenied, {"The server is busy. Try again in a moment."}}));
  EXPECT_TRUE(hungUp.contains(ann));
}

TEST_F(ScoresTest, AClaimedNameIsRefused) {
  verdict.outcome = Outcome::refused("That name is claimed.");
  EXPECT_EQ(refusal(arena, {"Ann", "", "0", KELVORA_VERSION}), "That name is claimed.");
  login(firstBotClient, "Lumo");
  EXPECT_EQ(arena.playerCount(), 1U) << "bots aren't asked";
}

TEST_F(ScoresTest, TheNamesPasswordFollowsTheArenas) {
  EXPECT_EQ(refusal(locked, {"Ann", "sesame", "0", KELVORA_VERSION}), "");
  EXPECT_EQ(asked.back().second, "");
  locked.disconnected(99);
  EXPECT_EQ(refusal(locked, {"Ann", "sesame my own", "0", KELVORA_VERSION}), "");
  EXPECT_EQ(asked.back().second, "my own");
  locked.disconnected(99);
  asked.clear();
  for (const char* password : {"sesamemy", "my own", "", "sesam"}) {
    EXPECT_EQ(refusal(locked, {"Ann", password, "0", KELVORA_VERSION}), "Wrong password.") << password;
  }
  EXPECT_TRUE(asked.empty());
}

TEST_F(ScoresTest, NobodyGetsAClaimedNameByANumber) {
  login(ann, "Ann", "0");
  verdict.claimed = {"ann2", "ann4"};
  login(bob, "Ann", "1");
  EXPECT_EQ(view(bob).name, "Ann 3");
  login(cat, "Ann", "2");
  EXPECT_EQ(view(cat).name, "Ann 5");
}

}  // namespace
}  // namespace kelvora::server
