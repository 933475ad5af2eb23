#include "tests/server/moderation/moderationTest.h"

namespace kelvora::server {
namespace {

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
  EXPECT_EQ(answerTo(ann, "!help"), "Commands: !help !who !vote !login. !help COMMAND explains one.");
  EXPECT_EQ(answerTo(ann, "!HELP !Who"), "!who: Lists the players.");
  EXPECT_EQ(answerTo(ann, "!nonsense"), "There is no such command. !help lists them.");
  EXPECT_EQ(answerTo(ann, "!help nonsense"), "There is no such command. !help lists them.");
  EXPECT_EQ(answerTo(ann, "!" + std::string(Moderation::maxLine, 'x')), "That line is too long.");
  becomeModerator(ann);
  EXPECT_EQ(chat(ann, "!help").size(), 2U);
}

TEST_F(ModerationTest, HelpLeavesOutWhatTheServerLacks) {
  login(ann, "Ann");
  Moderation withoutModerators(arena, bots, records, host, {});
  got.clear();
  withoutModerators.run(ann, "!help", now);
  EXPECT_EQ(textsTo(ann), (std::vector<std::string>{"Commands: !help !who !vote. !help COMMAND explains one."}));
  got.clear();
  withoutModerators.run(ann, "!login open-sesame", now);
  EXPECT_EQ(textsTo(ann), (std::vector<std::string>{"This server has no moderators."}));
}

TEST_F(ModerationTest, WhoListsPlayersAndForModeratorsTheirNetworks) {
  login(ann, "Ann", "0");
  login(firstBotClient, "Lumo", "3");
  EXPECT_EQ(chat(ann, "!who"), (std::vector<std::string>{"Red: Ann, 0 captures", "Cyan: Lumo, bot, 0 captures"}));
  becomeModerator(ann);
  EXPECT_EQ(chat(ann, "!who").at(0), "Red: Ann, moderator, 0 captures, 192.0.2.1");
}

}  // namespace
}  // namespace kelvora::server
