#include "server/moderation/commandLine.h"

#include <gtest/gtest.h>

namespace kelvora::server {
namespace {

std::vector<PlayerView> playersNamed(const std::vector<std::string>& names) {
  std::vector<PlayerView> players;
  for (const std::string& name : names) {
    const auto number = static_cast<ClientId>(players.size());
    PlayerView& player = players.emplace_back();
    player.client = number + 1;
    player.colour = static_cast<PlayerColour>(number);
    player.name = name;
  }
  return players;
}

TEST(CommandLine, WordsAreCutOffWithTheirBlanks) {
  std::string_view text = "  ban  Ann Lee ";
  EXPECT_EQ(takeWord(text), "ban");
  EXPECT_EQ(text, "Ann Lee ");
  EXPECT_EQ(takeWord(text), "Ann");
  EXPECT_EQ(takeWord(text), "Lee");
  EXPECT_EQ(takeWord(text), "");
  EXPECT_EQ(text, "");
}

TEST(CommandLine, TheLongestNameThatFitsCounts) {
  const auto players = playersNamed({"Ann", "Ann Lee", "Lee"});
  std::string_view text = "ann lee 2h rude";
  EXPECT_EQ(takePlayer(text, players), &players[1]);
  EXPECT_EQ(text, "2h rude");
  text = "Ann Leeds";
  EXPECT_EQ(takePlayer(text, players), &players[0]);
  EXPECT_EQ(text, "Leeds");
  text = " lee";
  EXPECT_EQ(takePlayer(text, players), &players[2]);
  EXPECT_EQ(text, "");
}

TEST(CommandLine, AccentsAndPunctuationNeedNotBeTyped) {
  const auto players = playersNamed({"J\xFCrgen", "-=Max=-", "..."});
  std::string_view text = "jurgen";
  EXPECT_EQ(takePlayer(text, players), &players[0]);
  text = "max out";
  EXPECT_EQ(takePlayer(text, players), &players[1]);
  EXPECT_EQ(text, "out");
  text = "... out";
  EXPECT_EQ(takePlayer(text, players), &players[2]);
}

TEST(CommandLine, AColourStandsForItsPlayerUnlessItIsAName) {
  auto players = playersNamed({"Ann", "Bob"});
  std::string_view text = "YELLOW now";
  EXPECT_EQ(takePlayer(text, players), &players[1]);
  EXPECT_EQ(text, "now");
  players[0].name = "Yellow";
  text = "yellow";
  EXPECT_EQ(takePlayer(text, players), &players[0]);
}

TEST(CommandLine, NobodyFitsAnUnknownName) {
  const auto players = playersNamed({"Ann"});
  for (const std::string_view whole : {"", "  ", "An", "Anne", "Bob Ann", "green"}) {
    std::string_view text = whole;
    EXPECT_EQ(takePlayer(text, players), nullptr) << whole;
    EXPECT_EQ(text, whole);
  }
}

}  // namespace
}  // namespace kelvora::server
