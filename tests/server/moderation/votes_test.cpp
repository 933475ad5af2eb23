#include "tests/server/moderation/moderationTest.h"

namespace kelvora::server {
namespace {

TEST_F(ModerationTest, AVoteNeedsMoreThanHalfOfThePeople) {
  loginThree();
  login(dan, "Dan", "3");
  login(firstBotClient, "Lumo", "4");
  EXPECT_EQ(answerTo(ann, "!vote kick Bob"), "Ann wants to kick Bob. Type !vote yes within 30 seconds: 1 of 3 votes.");
  EXPECT_EQ(textsTo(cat).size(), 1U);
  EXPECT_EQ(answerTo(ann, "!vote yes"), "Your network has voted already.");
  EXPECT_EQ(answerTo(cat, "!vote yes"), "The vote to kick Bob: 2 of 3 votes.");
  EXPECT_TRUE(isIn(bob)) << "half is not more than half";
  EXPECT_EQ(answerTo(dan, "!vote kick bob"), "The vote to kick Bob has passed.");
  EXPECT_FALSE(isIn(bob));
  EXPECT_EQ(textsTo(bob).back(), "The players have voted to kick you.");
  EXPECT_EQ(host.lines.back(), "the vote to kick Bob has passed");
  host.networks[99] = host.network(bob);
  EXPECT_EQ(refusal(arena, {"Bob", "", "1", KELVORA_VERSION}),
            "You are banned until 2001-09-09 01:51 UTC: the players have voted");
  host.time += Moderation::kickedFor;
  EXPECT_EQ(refusal(arena, {"Bob", "", "1", KELVORA_VERSION}), "");
}

TEST_F(ModerationTest, ANetworkHasOneVote) {
  loginThree();
  host.networks[cat] = host.network(ann);
  chat(ann, "!vote kick Bob");
  EXPECT_EQ(answerTo(cat, "!vote yes"), "Your network has voted already.");
  EXPECT_TRUE(isIn(bob));
}

TEST_F(ModerationTest, AVoteEndsAfterHalfAMinute) {
  loginThree();
  chat(ann, "!vote restart");
  const Millis begun = now - 500;
  passTime(begun + 29'999 - now);
  EXPECT_TRUE(textsTo(ann).empty());
  passTime(1);
  EXPECT_EQ(textsTo(ann), (std::vector<std::string>{"The vote to restart the round has failed."}));
  EXPECT_EQ(answerTo(bob, "!vote yes"), "There is no vote. !help vote tells how to start one.");
}

TEST_F(ModerationTest, ANetworkStartsOneVoteAMinute) {
  loginThree();
  chat(ann, "!vote restart");
  EXPECT_EQ(answerTo(bob, "!vote kick Cat"), "There is a vote already: restart the round.");
  passTime(30'000);
  EXPECT_EQ(answerTo(ann, "!vote kick Bob"), "You can start one vote a minute.");
  passTime(30'000);
  EXPECT_NE(answerTo(ann, "!vote kick Bob"), "You can start one vote a minute.");
}

TEST_F(ModerationTest, TheVotesOfThoseWhoLeaveDontCount) {
  loginThree();
  login(dan, "Dan", "3");
  login(eve, "Eve", "4");
  chat(ann, "!vote restart");
  chat(bob, "!vote yes");
  arena.disconnected(ann);
  arena.disconnected(bob);
  EXPECT_EQ(chat(cat, "!vote yes"), (std::vector<std::string>{})) << "1 of 2 is no news";
  EXPECT_EQ(chat(dan, "!vote yes").at(0), "The vote to restart the round has passed.");
}

TEST_F(ModerationTest, LeavingBeforeAVoteIsOverDoesntHelp) {
  loginThree();
  login(dan, "Dan", "3");
  chat(ann, "!vote kick Bob");
  arena.disconnected(bob);
  passTime(40);
  EXPECT_TRUE(textsTo(ann).empty());
  host.networks[eve] = host.network(bob);
  login(eve, "Robert", "1");
  chat(cat, "!vote yes");
  EXPECT_TRUE(isIn(eve)) << "two of four votes";
  EXPECT_EQ(answerTo(dan, "!vote yes"), "The vote to kick Bob has passed.");
  EXPECT_FALSE(isIn(eve));
  EXPECT_EQ(textsTo(eve).back(), "The players have voted to kick you.");
  host.networks[99] = host.network(bob);
  EXPECT_NE(refusal(arena, {"Bob", "", "1", KELVORA_VERSION}), "");
}

TEST_F(ModerationTest, AVoteSparesOthersOfTheNetwork) {
  loginThree();
  login(dan, "Dan", "3");
  login(eve, "Eve", "4");
  host.networks[dan] = host.network(bob);
  chat(ann, "!vote kick Bob");
  chat(cat, "!vote yes");
  chat(eve, "!vote yes");
  EXPECT_FALSE(isIn(bob));
  EXPECT_TRUE(isIn(dan)) << "they came after Bob, but Bob hasn't left";
}

TEST_F(ModerationTest, AVoteDoesntShortenABan) {
  loginThree();
  login(dan, "Dan", "3");
  becomeModerator(ann);
  chat(ann, "!vote kick Bob");
  chat(ann, "!ban Bob forever");
  chat(cat, "!vote yes");
  host.time += Moderation::kickedFor;
  host.networks[99] = host.network(bob);
  EXPECT_EQ(refusal(arena, {"Bob", "", "1", KELVORA_VERSION}), "You are banned forever.");
}

TEST_F(ModerationTest, AVoteProlongsABan) {
  loginThree();
  login(dan, "Dan", "3");
  becomeModerator(ann);
  chat(ann, "!vote kick Bob");
  chat(ann, "!ban Bob 10s");
  chat(cat, "!vote yes");
  host.time += Moderation::kickedFor - 1;
  host.networks[99] = host.network(bob);
  EXPECT_NE(refusal(arena, {"Bob", "", "1", KELVORA_VERSION}), "");
}

TEST_F(ModerationTest, ALonePersonDecidesAlone) {
  login(ann, "Ann");
  login(firstBotClient, "Lumo", "1");
  chat(ann, "!vote restart");
  EXPECT_EQ(all(ann, wire::msgRoundOver).size(), 1U);
  EXPECT_EQ(answerTo(ann, "!vote kick Lumo"), "Bots can't be kicked.");
  EXPECT_EQ(answerTo(ann, "!vote kick Ann"), "You can leave by yourself.");
  EXPECT_EQ(answerTo(ann, "!vote"), "Type !vote kick NAME, !vote restart or !vote yes.");
}

}  // namespace
}  // namespace kelvora::server
