#include <filesystem>
#include <fstream>
#include <random>

#include "tests/server/moderation/moderationTest.h"

namespace kelvora::server {
namespace {

TEST_F(ModerationTest, ABanKeepsTheWholeNetworkOut) {
  loginThree();
  login(dan, "Dan", "3");
  host.networks[dan] = host.network(bob);
  becomeModerator(ann);
  const auto lines = chat(ann, "!ban Bob 2h rude words");
  EXPECT_EQ(lines.back(), "Banned Bob (192.0.2.2) until 2001-09-09 03:46 UTC.");
  EXPECT_FALSE(isIn(bob));
  EXPECT_FALSE(isIn(dan));
  EXPECT_TRUE(isIn(cat));
  EXPECT_EQ(textsTo(dan), (std::vector<std::string>{"You are banned until 2001-09-09 03:46 UTC: rude words"}));
  host.networks[99] = host.network(bob);
  EXPECT_EQ(refusal(arena, {"Bob", "", "0", KELVORA_VERSION}), "You are banned until 2001-09-09 03:46 UTC: rude words");
  EXPECT_EQ(refusal(arena, {"Bob", "", "0", "0.0.0"}), "You are banned until 2001-09-09 03:46 UTC: rude words");
  host.time += 7'199;
  EXPECT_NE(refusal(arena, {"Bob", "", "0", KELVORA_VERSION}), "");
  host.time += 1;
  EXPECT_EQ(refusal(arena, {"Bob", "", "0", KELVORA_VERSION}), "");
}

TEST_F(ModerationTest, ABanCanBeLifted) {
  loginThree();
  becomeModerator(ann);
  chat(ann, "!ban Bob Forever");
  EXPECT_EQ(moderation.count(PenaltyKind::ban), 1U);
  EXPECT_EQ(chat(ann, "!bans"), (std::vector<std::string>{"ban 192.0.2.2 forever Bob", "1 in all."}));
  EXPECT_EQ(answerTo(ann, "!bans mute"), "0 with that word.");
  EXPECT_EQ(answerTo(ann, "!unban cat"), "There is no ban of that name or network. !bans lists them.");
  EXPECT_EQ(answerTo(ann, "!unban bob"), "Lifted the ban of 192.0.2.2.");
  EXPECT_EQ(answerTo(ann, "!bans"), "Nobody is banned or muted.");
  login(bob, "Bob");
  EXPECT_TRUE(isIn(bob));
}

TEST_F(ModerationTest, ModeratorsCantShutThemselvesOut) {
  loginThree();
  host.networks[bob] = host.network(ann);
  becomeModerator(ann);
  EXPECT_EQ(answerTo(ann, "!ban Bob"), "That player is in your own network.");
  EXPECT_EQ(answerTo(ann, "!ban Ann"), "That player is in your own network.");
  EXPECT_TRUE(isIn(bob));
}

TEST_F(ModerationTest, NobodyGetsTheLinesOfAMutedPlayerWhoIsToldOnce) {
  loginThree();
  becomeModerator(ann);
  EXPECT_EQ(answerTo(ann, "!mute bob 1h spam"), "Muted Bob (192.0.2.2) until 2001-09-09 02:46 UTC.");
  EXPECT_EQ(answerTo(bob, "hello"), "Nobody gets your lines. You are muted until 2001-09-09 02:46 UTC: spam");
  EXPECT_TRUE(all(bob, wire::msgChat).empty());
  EXPECT_TRUE(got[cat].empty());
  EXPECT_TRUE(chat(bob, "hello?", "1").empty());
  EXPECT_TRUE(got[ann].empty()) << "private lines neither";
  EXPECT_FALSE(chat(bob, "!who").empty());
}

TEST_F(ModerationTest, AMutePersistsOverReconnectsAndRounds) {
  loginThree();
  becomeModerator(ann);
  chat(ann, "!mute bob 1h");
  arena.disconnected(bob);
  login(bob, "Robert", "1");
  chat(ann, "!restart");
  EXPECT_EQ(chat(bob, "hello").size(), 1U);
  EXPECT_TRUE(all(bob, wire::msgChat).empty());
  EXPECT_TRUE(got[cat].empty());
  EXPECT_EQ(answerTo(ann, "!unmute 192.0.2.2"), "Lifted the mute of 192.0.2.2.");
  chat(bob, "hello");
  EXPECT_EQ(all(cat, wire::msgChat).size(), 1U);
}

TEST_F(ModerationTest, RereadingTheBansRemovesPlayersWhoAreBannedNow) {
  loginThree();
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("kelvora-reread-" + std::to_string(std::random_device{}()));
  Moderation kept(arena, bots, records, host, {.moderatorHash = "", .bansFile = file.native()});
  std::ofstream(file) << "ban 192.0.2.2 forever found out\nmute 192.0.2.3 forever\n";
  kept.reread(now);
  EXPECT_EQ(textsTo(bob), std::vector<std::string>{"You are banned forever: found out"});
  EXPECT_FALSE(isIn(bob));
  EXPECT_TRUE(isIn(cat));
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace kelvora::server
