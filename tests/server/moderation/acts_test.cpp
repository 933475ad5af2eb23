#include "tests/server/moderation/moderationTest.h"

namespace kelvora::server {
namespace {

TEST_F(ModerationTest, OnlyModeratorsModerate) {
  loginThree();
  for (const char* line : {"!kick Bob", "!ban Bob", "!unban Bob", "!mute Bob", "!unmute Bob", "!bans", "!say x",
                           "!bots 1", "!skill hard", "!restart", "!end"}) {
    EXPECT_EQ(answerTo(ann, line), "Only moderators may do that.") << line;
  }
  EXPECT_TRUE(isIn(bob));
  EXPECT_TRUE(host.acts.empty());
}

TEST_F(ModerationTest, ThePasswordMakesAModeratorUntilTheyLeave) {
  loginThree();
  EXPECT_TRUE(chat(ann, "!login wrong").empty());
  host.finishWork();
  EXPECT_EQ(textsTo(ann), (std::vector<std::string>{"Wrong password."}));
  EXPECT_EQ(host.lines.back(), "wrong moderators' password from Ann (client 1, 192.0.2.1)");
  EXPECT_EQ(answerTo(ann, "!end"), "Only moderators may do that.");
  becomeModerator(ann);
  EXPECT_EQ(host.acts, std::vector<std::string>{"moderator Ann (client 1, 192.0.2.1) has logged in"});
  EXPECT_EQ(answerTo(ann, "!login open-sesame"), "You are a moderator already.");
  arena.disconnected(ann);
  moderation.left(ann);
  login(ann, "Ann");
  EXPECT_EQ(answerTo(ann, "!end"), "Only moderators may do that.");
}

TEST_F(ModerationTest, APlayerWhoLeavesDuringTheCheckBecomesNoModerator) {
  login(ann, "Ann");
  chat(ann, "!login open-sesame");
  arena.disconnected(ann);
  moderation.left(ann);
  login(ann, "Ann");
  host.finishWork();
  EXPECT_EQ(answerTo(ann, "!end"), "Only moderators may do that.");
  EXPECT_TRUE(host.acts.empty());
}

TEST_F(ModerationTest, AttemptsAreLimitedPerNetwork) {
  loginThree();
  host.networks[bob] = host.network(ann);
  for (int i = 0; i < 5; ++i) {
    EXPECT_TRUE(chat(ann, "!login wrong").empty());
    EXPECT_EQ(answerTo(ann, "!login wrong"), "Your last attempt is still being checked.");
    host.finishWork();
  }
  EXPECT_EQ(answerTo(bob, "!login open-sesame"), "Too many attempts from your network. Try again in a minute.");
  EXPECT_EQ(host.pendingWork(), 0U);
  EXPECT_TRUE(chat(cat, "!login wrong").empty()) << "another network";
  now += 60'000;
  becomeModerator(bob);
}

TEST_F(ModerationTest, ABusyServerRefusesAttempts) {
  login(ann, "Ann");
  host.isBusy = true;
  EXPECT_EQ(answerTo(ann, "!login open-sesame"), "The server is busy. Try again in a moment.");
}

TEST_F(ModerationTest, WithoutAPasswordThereAreNoModerators) {
  login(ann, "Ann");
  Moderation open(arena, bots, records, host, {});
  got.clear();
  open.run(ann, "!login ", now);
  EXPECT_EQ(textsTo(ann), (std::vector<std::string>{"This server has no moderators."}));
}

TEST_F(ModerationTest, AKickedPlayerReadsWhyAndMayComeBack) {
  loginThree();
  becomeModerator(ann);
  chat(ann, "!kick bob be nice");
  EXPECT_FALSE(isIn(bob));
  EXPECT_EQ(textsTo(bob), (std::vector<std::string>{"You have been kicked: be nice"}));
  EXPECT_EQ(textsTo(cat), (std::vector<std::string>{"A moderator has kicked Bob."}));
  login(bob, "Bob");
  EXPECT_TRUE(isIn(bob));
}

TEST_F(ModerationTest, EachActIsLoggedWithItsModeratorAndTarget) {
  loginThree();
  login(firstBotClient, "Lumo", "3");
  becomeModerator(ann);
  host.acts.clear();
  const std::string who = "moderator Ann (client 1, 192.0.2.1)";
  const std::vector<std::pair<std::string, std::string>> lines = {
      {"!say hello", who + ": !say hello"},
      {"!kick dan", who + ": !kick dan (refused: Nobody here has that name or colour.)"},
      {"!kick lumo", who + " on Lumo (bot): !kick lumo (refused: That is a bot. !bots changes their number.)"},
      {"!bots 6", who + ": !bots 6 (refused: The number of bots is 0 to 5.)"},
      {"!mute cat 1h", who + " on Cat (client 3, 192.0.2.3): !mute cat 1h"},
      {"!ban yellow 2h rude", who + " on Bob (client 2, 192.0.2.2): !ban yellow 2h rude"},
  };
  for (const auto& [line, act] : lines) {
    chat(ann, line);
    EXPECT_EQ(host.acts, std::vector<std::string>{act});
    host.acts.clear();
  }
}

TEST_F(ModerationTest, CommandsOnAPlayerNeedAPersonWhoIsHere) {
  loginThree();
  login(firstBotClient, "Lumo", "3");
  becomeModerator(ann);
  for (const std::string command : {"!kick", "!ban", "!mute"}) {
    EXPECT_EQ(answerTo(ann, command), "Nobody here has that name or colour.");
    EXPECT_EQ(answerTo(ann, command + " nobody"), "Nobody here has that name or colour.");
    EXPECT_EQ(answerTo(ann, command + " Lumo"), "That is a bot. !bots changes their number.");
  }
  EXPECT_TRUE(isIn(firstBotClient));
}

TEST_F(ModerationTest, ModeratorsSpeakForTheServer) {
  loginThree();
  becomeModerator(ann);
  chat(ann, "!say The server restarts at nine.");
  EXPECT_EQ(textsTo(bob), (std::vector<std::string>{"The server restarts at nine."}));
}

TEST_F(ModerationTest, ModeratorsChangeTheBots) {
  login(ann, "Ann");
  becomeModerator(ann);
  EXPECT_EQ(answerTo(ann, "!bots 3"), "The number of bots is now 3.");
  EXPECT_EQ(bots.settings().count, 3);
  EXPECT_EQ(answerTo(ann, "!skill HARD"), "The skill of the bots is now hard.");
  EXPECT_EQ(bots.settings().skill, SkillLevel::hard);
  for (const char* line : {"!bots", "!bots 6", "!bots -1", "!bots many"}) {
    EXPECT_EQ(answerTo(ann, line), "The number of bots is 0 to 5.") << line;
  }
  EXPECT_EQ(answerTo(ann, "!skill best"), "The skill is easy, normal, hard or mixed.");
  for (int i = 0; i < 300; ++i) {
    bots.tick(now += 40);
    arena.tick(now);
  }
  EXPECT_EQ(arena.playerCount(), 4U);
  chat(ann, "!bots 1");
  EXPECT_EQ(arena.playerCount(), 2U);
}

TEST_F(ModerationTest, ModeratorsEndAndRestartRounds) {
  loginThree();
  becomeModerator(ann);
  capture(ann, bob);
  chat(ann, "!end");
  EXPECT_EQ(all(cat, wire::msgRoundOver).at(0).at(0), "Ann wins the round with 1 capture!");
  EXPECT_FALSE(arena.isRoundRunning());
  EXPECT_EQ(answerTo(ann, "!end"), "No round is running.");
  chat(ann, "!restart");
  EXPECT_TRUE(arena.isRoundRunning());
  EXPECT_TRUE(all(cat, wire::msgRoundOver).empty());
  EXPECT_EQ(textsTo(cat), (std::vector<std::string>{"A new round has begun. Press Spawn to play."}));
  say(cat, wire::msgSpawnRequest, {});
  pass(4'000);
  say(cat, wire::msgSpawnRequest, {});
  EXPECT_TRUE(view(cat).isAlive);
  chat(ann, "!restart");
  EXPECT_FALSE(view(cat).isAlive);
  EXPECT_EQ(all(cat, wire::msgRoundOver).at(0).at(0), "The round begins again.");
  EXPECT_EQ(view(ann).roundCaptures, 0);
}

}  // namespace
}  // namespace kelvora::server
