#include "server/moderation/moderation.h"

#include <filesystem>
#include <optional>
#include <random>

#include "server/system/passwords.h"
#include "tests/server/arena/arenaTest.h"
#include "tests/server/moderation/fakeHost.h"

namespace kelvora::server {
namespace {

/// Hashed once, because that takes long on purpose.
const std::string& hashOfOpenSesame() {
  static const std::string hash = hashOf("open-sesame");
  return hash;
}

/// An arena whose lines that begin with "!" reach its moderation.
class ModerationTest : public ArenaTest {
 protected:
  static constexpr ClientId dan = 4;
  static constexpr ClientId eve = 5;

  FakeHost host;
  BotKeeper bots{arena, {}, "", KELVORA_VERSION, 1};
  RecordBook records{host, ""};
  Moderation moderation{arena, bots, records, host, {.moderatorHash = hashOfOpenSesame(), .bansFile = ""}};
  std::vector<std::pair<ClientId, std::string>> commands;

  void command(ClientId client, const std::string& line) override { commands.emplace_back(client, line); }
  Outcome mayEnter(ClientId client) override { return moderation.mayEnter(host.network(client)); }
  std::string muteReason(ClientId client) override { return moderation.muteReason(host.network(client)); }

  /// Sends a chat line, and returns what the sender gets from the server.
  std::vector<std::string> chat(ClientId client, const std::string& text, const std::string& target = "-1") {
    got.clear();
    say(client, wire::msgChat, {target, text});
    for (const auto& [from, line] : std::exchange(commands, {})) moderation.run(from, line, now);
    leaveHungUp();
    now += 500;  // the flood limit
    return textsTo(client);
  }
  std::string answerTo(ClientId client, const std::string& text) {
    const auto lines = chat(client, text);
    return lines.size() == 1 ? lines[0] : std::to_string(lines.size()) + " lines";
  }
  std::vector<std::string> textsTo(ClientId client) {
    std::vector<std::string> texts;
    for (const Fields& fields : all(client, wire::msgServerText)) texts.push_back(fields.at(0));
    return texts;
  }
  void leaveHungUp() {
    for (const ClientId client : std::exchange(hungUp, {})) {
      arena.disconnected(client);
      moderation.left(client);
    }
  }
  void passTime(Millis time) {
    got.clear();
    pass(time);
    moderation.tick(now);
    leaveHungUp();
  }
  bool isIn(ClientId client) {
    const auto players = arena.players(now);
    return std::ranges::any_of(players, [&](const PlayerView& player) { return player.client == client; });
  }
  void becomeModerator(ClientId client) {
    chat(client, "!login open-sesame");
    got.clear();
    host.finishWork();
    EXPECT_EQ(textsTo(client), (std::vector<std::string>{"You are a moderator now. !help lists your commands."}));
    got.clear();
  }
  void loginThree() {
    login(ann, "Ann", "0");
    login(bob, "Bob", "1");
    login(cat, "Cat", "2");
  }
};

TEST_F(ModerationTest, CommandsReachNobody) {
  loginThree();
  for (const char* line : {"!help", " !help", "(private) !help", "(PRIVATE)  !x", "!", "! who"}) {
    EXPECT_FALSE(chat(ann, line).empty()) << line;
    EXPECT_TRUE(all(ann, wire::msgChat).empty()) << line;
    EXPECT_TRUE(got[bob].empty()) << line;
  }
  chat(ann, "!login secret", "2");
  EXPECT_TRUE(got[bob].empty());
  chat(ann, "hi!");
  EXPECT_EQ(all(bob, wire::msgChat), (std::vector<Fields>{{"1", "hi!"}}));
}

TEST_F(ModerationTest, CommandsCountAsRequests) {
  login(ann, "Ann");
  for (int i = 0; i < 100; ++i) say(ann, wire::msgChat, {"-1", "!help"});
  EXPECT_EQ(commands.size(), 20U);
}

TEST_F(ModerationTest, HelpListsWhatThePlayerMayDo) {
  login(ann, "Ann");
  EXPECT_EQ(answerTo(ann, "!help"),
            "Commands: !help !who !vote !login !top !stats !claim. !help COMMAND explains one.");
  EXPECT_EQ(answerTo(ann, "!HELP !Who"), "!who: Lists the players.");
  EXPECT_EQ(answerTo(ann, "!nonsense"), "There is no such command. !help lists them.");
  EXPECT_EQ(answerTo(ann, "!help nonsense"), "There is no such command. !help lists them.");
  EXPECT_EQ(answerTo(ann, "!" + std::string(Moderation::maxLine, 'x')), "That line is too long.");
  becomeModerator(ann);
  EXPECT_EQ(chat(ann, "!help").size(), 2U);
}

TEST_F(ModerationTest, WhoListsPlayersAndForModeratorsTheirNetworks) {
  login(ann, "Ann", "0");
  login(firstBotClient, "Lumo", "3");
  EXPECT_EQ(chat(ann, "!who"), (std::vector<std::string>{"Red: Ann, 0 captures", "Cyan: Lumo, bot, 0 captures"}));
  becomeModerator(ann);
  EXPECT_EQ(chat(ann, "!who").at(0), "Red: Ann, moderator, 0 captures, 192.0.2.1");
}

TEST_F(ModerationTest, OnlyModeratorsModerate) {
  loginThree();
  for (const char* line : {"!kick Bob", "!ban Bob", "!unban Bob", "!mute Bob", "!unmute Bob", "!bans", "!say x",
                           "!bots 1", "!skill hard", "!restart", "!end"}) {
    EXPECT_EQ(answerTo(ann, line), "Only moderators may do that.") << line;
  }
  EXPECT_TRUE(isIn(bob));
  EXPECT_TRUE(host.lines.empty());
}

TEST_F(ModerationTest, ThePasswordMakesAModeratorUntilTheyLeave) {
  loginThree();
  EXPECT_TRUE(chat(ann, "!login wrong").empty());
  host.finishWork();
  EXPECT_EQ(textsTo(ann), (std::vector<std::string>{"Wrong password."}));
  EXPECT_EQ(host.lines.back(), "wrong moderators' password from Ann (client 1, 192.0.2.1)");
  EXPECT_EQ(answerTo(ann, "!end"), "Only moderators may do that.");
  becomeModerator(ann);
  EXPECT_EQ(host.lines.back(), "moderator Ann (client 1, 192.0.2.1) has logged in");
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
  EXPECT_EQ(host.lines.back(), "moderator Ann (client 1, 192.0.2.1): !kick bob be nice");
  login(bob, "Bob");
  EXPECT_TRUE(isIn(bob));
  EXPECT_EQ(answerTo(ann, "!kick nobody"), "Nobody here has that name or colour.");
}

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
  chat(ann, "!ban Bob forever");
  EXPECT_EQ(moderation.count(PenaltyKind::ban), 1U);
  EXPECT_EQ(chat(ann, "!bans"), (std::vector<std::string>{"ban 192.0.2.2 forever Bob: ", "1 in all."}));
  EXPECT_EQ(answerTo(ann, "!bans mute"), "0 with that word.");
  EXPECT_EQ(answerTo(ann, "!unban cat"), "There is no ban of that name or network. !bans lists them.");
  EXPECT_EQ(answerTo(ann, "!unban bob"), "Lifted the ban of 192.0.2.2.");
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

TEST_F(ModerationTest, AVoteIsOverWhenItsPlayerLeaves) {
  loginThree();
  chat(ann, "!vote kick Bob");
  arena.disconnected(bob);
  passTime(40);
  EXPECT_TRUE(textsTo(ann).empty());
  login(bob, "Bob");
  EXPECT_EQ(answerTo(cat, "!vote yes"), "There is no vote. !help vote tells how to start one.");
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

TEST_F(ModerationTest, WithoutRecordsTheirCommandsSaySo) {
  login(ann, "Ann");
  for (const char* line : {"!top", "!stats", "!claim secret"}) {
    EXPECT_EQ(answerTo(ann, line), "This server keeps no records.") << line;
  }
}

/// The same with records in a file.
class RecordCommandsTest : public ModerationTest {
 protected:
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("kelvora-commands-" + std::to_string(std::random_device{}()));
  std::optional<RecordBook> book;
  std::optional<Moderation> kept;

  void SetUp() override {
    std::filesystem::create_directory(folder);
    book.emplace(host, (folder / "records").native());
    kept.emplace(arena, bots, *book, host, ModerationSettings{});
    login(ann, "Ann", "0");
    login(bob, "Bob", "1");
  }
  void TearDown() override {
    book.reset();
    std::filesystem::remove_all(folder);
  }
  std::vector<std::string> run(ClientId client, const std::string& line) {
    got.clear();
    kept->run(client, line, now);
    host.finishWork();
    return textsTo(client);
  }
};

TEST_F(RecordCommandsTest, TopAndStatsTellWhatPlayersHaveDone) {
  EXPECT_EQ(run(ann, "!top"), std::vector<std::string>{"Nobody has a record yet."});
  book->add({{.client = bob, .name = "Bob", .captures = 7, .isWinner = true, .joined = 0},
             {.client = ann, .name = "Ann", .captures = 2, .joined = 0}},
            true, 7'500'000);
  const std::string bobs = "Bob: 7 captures and 1 win in 1 round, 2 h 5 min";
  EXPECT_EQ(run(ann, "!stats bob"), std::vector<std::string>{bobs});
  EXPECT_EQ(run(ann, "!stats"), std::vector<std::string>{"Ann: 2 captures and 0 wins in 1 round, 2 h 5 min"});
  EXPECT_EQ(run(ann, "!stats nobody"), std::vector<std::string>{"There is no record of that name."});
  EXPECT_EQ(run(ann, "!top").at(0), "1. " + bobs);
  arena.disconnected(bob);
  EXPECT_EQ(run(ann, "!stats BOB"), std::vector<std::string>{bobs}) << "of somebody who isn't here";
}

TEST_F(RecordCommandsTest, ANameIsClaimedOnceAMinuteByANetwork) {
  EXPECT_EQ(run(ann, "!claim"), std::vector<std::string>{"Type !claim and a password of up to 64 letters."});
  EXPECT_EQ(run(ann, "!claim " + std::string(65, 'x')).size(), 1U);
  EXPECT_EQ(run(ann, "!claim secret "),
            std::vector<std::string>{"The name Ann is yours. From now on, log in with this password."});
  EXPECT_EQ(run(ann, "!claim secret"), std::vector<std::string>{"You can claim one name a minute."});
  now += 60'000;
  EXPECT_EQ(run(ann, "!claim secret"), std::vector<std::string>{"Somebody has claimed the name already."});
  EXPECT_TRUE(book->verdict(9, "ann", "secret").isPending);
  host.finishWork();
  EXPECT_FALSE(book->verdict(9, "ann", "secret").outcome.isRefused());
}

// A command, then words that commands look for and random ones.
TEST_F(ModerationTest, RandomCommandLinesDoNoHarm) {
  std::mt19937 random(11);
  const std::vector<std::string> words = {"!help",
                                          "!who",
                                          "!vote",
                                          "kick",
                                          "restart",
                                          "yes",
                                          "!login",
                                          "!kick",
                                          "!ban",
                                          "!unban",
                                          "!mute",
                                          "!unmute",
                                          "!bans",
                                          "!say",
                                          "!bots",
                                          "!skill",
                                          "!restart",
                                          "!end",
                                          "!top",
                                          "!stats",
                                          "!claim",
                                          "2h",
                                          "forever",
                                          "Ann",
                                          "bob",
                                          "Cat",
                                          "red",
                                          "hard",
                                          "3",
                                          "-1",
                                          "99999999999999999999",
                                          "192.0.2.2",
                                          "::1/64",
                                          "\"",
                                          "!",
                                          " ",
                                          "(private) ",
                                          "%s%n",
                                          "open-sesame"};
  loginThree();
  becomeModerator(ann);
  for (int round = 0; round < 4'000; ++round) {
    std::string line = words[random() % words.size()];
    if (!line.starts_with("!")) line = "!" + line;
    for (auto more = random() % 6; more > 0; --more) {
      line += ' ';
      if (random() % 8 == 0) {
        for (auto length = random() % 300; length > 0; --length) {
          const char c = static_cast<char>(random());
          if (c != wire::frameStart && c != wire::frameEnd && c != wire::fieldSeparator) line += c;
        }
      } else {
        line += words[random() % words.size()];
      }
    }
    const ClientId client = ann + static_cast<ClientId>(random() % 3);
    if (!isIn(client)) {
      arena.connected(client, now);
      say(client, wire::msgLogin, {"P" + std::to_string(client), "", "0", KELVORA_VERSION});
      leaveHungUp();
    }
    chat(client, line);
    for (const Message& message : got[client]) EXPECT_NE(message.id, wire::msgChat) << line;
    if (random() % 4 == 0) host.finishWork();
    if (random() % 16 == 0) {
      host.time += 600;
      passTime(1'000);
    }
    ASSERT_LE(moderation.count(PenaltyKind::ban) + moderation.count(PenaltyKind::mute), 6U);
    ASSERT_LE(host.pendingWork(), 3U);
  }
  for (const std::string& line : host.lines) {
    for (const char c : line) ASSERT_TRUE(c >= ' ' && c <= '~') << line;
  }
}

}  // namespace
}  // namespace kelvora::server
