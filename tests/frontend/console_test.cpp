#include <gtest/gtest.h>

#include "base/fault.h"
#include "frontend/console.h"
#include "frontend/fontMan.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::world;

class Console : public GameTest {
 protected:
  std::string stored(const std::string& key) {
    const auto found = machine.settings.find({"fonts", key});
    return found == machine.settings.end() ? "(nothing)" : found->second;
  }
};

TEST_F(Console, EveryLineTypeHasItsDefaultColourAndSize) {
  struct Row {
    std::int16_t type;
    Colour colour;
    std::int16_t size;
  };
  for (const Row& row : {Row{0, RGB(128, 255, 128), 9}, Row{1, RGB(255, 255, 255), 9}, Row{2, RGB(255, 0, 255), 9},
                         Row{3, RGB(255, 255, 0), 9}, Row{4, RGB(255, 0, 0), 9}, Row{5, RGB(255, 255, 255), 0},
                         Row{6, RGB(255, 255, 255), 0}, Row{32767, RGB(255, 255, 255), 0}, Row{-1, RGB(0, 0, 0), 0}}) {
    printChat("text", LineType{row.type});
    EXPECT_EQ(world.chatLines[0].colour, row.colour) << row.type;
    EXPECT_EQ(world.chatLines[0].size, row.size) << row.type;
    EXPECT_EQ(fontMan::getFontColour(row.type), row.colour) << row.type;
    EXPECT_EQ(fontMan::getFontSize(row.type), row.size) << row.type;
  }
}

TEST_F(Console, ALinePushesTheOthersUpAndTheOldestOut) {
  for (int i = 1; i <= 9; ++i) printChat("line " + std::to_string(i), LineType::PublicChat);
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(world.chatLines[i].text, "line " + std::to_string(9 - i));
}

TEST_F(Console, ColourAndSizeMoveWithTheirLine) {
  printChat("old", LineType::Error);
  printChat("new", LineType::PublicChat);
  EXPECT_EQ(world.chatLines[1].text, "old");
  EXPECT_EQ(world.chatLines[1].colour, RGB(255, 0, 0));
  EXPECT_EQ(world.chatLines[1].size, 9);
}

TEST_F(Console, BlanksAtBothEndsAreTrimmed) {
  printChat("  two words  ", LineType::PublicChat);
  EXPECT_EQ(world.chatLines[0].text, "two words");
}

TEST_F(Console, NinetyCharactersAreOneLine) {
  printChat(std::string(90, 'x'), LineType::PublicChat);
  EXPECT_EQ(world.chatLines[0].text, std::string(90, 'x'));
  EXPECT_EQ(world.chatLines[1].text, "");
}

TEST_F(Console, NinetyOneCharactersAreTwoLines) {
  printChat(std::string(90, 'x') + "y", LineType::ServerMessage);
  EXPECT_EQ(world.chatLines[1].text, std::string(90, 'x'));
  EXPECT_EQ(world.chatLines[0].text, "> y");
  EXPECT_EQ(world.chatLines[0].colour, RGB(255, 255, 0));
}

TEST_F(Console, NinetyCharactersBetweenBlanksAreOneLine) {
  printChat("   " + std::string(90, 'x') + "   ", LineType::PublicChat);
  EXPECT_EQ(world.chatLines[0].text.size(), 90U);
  EXPECT_EQ(world.chatLines[1].text, "");
}

// 90 characters, then the mark and 88, then the mark and the last 22.
TEST_F(Console, Q043TheMarkCountsTowardsItsLine) {
  const std::string text = std::string(90, 'a') + std::string(88, 'b') + std::string(22, 'c');
  printChat(text, LineType::PublicChat);
  EXPECT_EQ(world.chatLines[2].text, std::string(90, 'a'));
  EXPECT_EQ(world.chatLines[1].text, "> " + std::string(88, 'b'));
  EXPECT_EQ(world.chatLines[0].text, "> " + std::string(22, 'c'));
  EXPECT_EQ(world.chatLines[3].text, "");

  printChat(text.substr(0, 178), LineType::PublicChat);
  EXPECT_EQ(world.chatLines[1].text, std::string(90, 'a'));
  EXPECT_EQ(world.chatLines[0].text, "> " + std::string(88, 'b')) << "90 with the mark are one line";
  printChat(text.substr(0, 179), LineType::PublicChat);
  EXPECT_EQ(world.chatLines[2].text, std::string(90, 'a'));
  EXPECT_EQ(world.chatLines[1].text, "> " + std::string(88, 'b'));
  EXPECT_EQ(world.chatLines[0].text, "> c");
}

// "> " and 77 letters put the blank at position 80 of its line. With one letter less it is at 79.
TEST_F(Console, Q043AContinuationSplitsAtABlankWithTheMarkCounted) {
  const std::string whole(90, 'x');
  printChat(whole + std::string(77, 'a') + " " + std::string(20, 'b'), LineType::PublicChat);
  EXPECT_EQ(world.chatLines[2].text, whole);
  EXPECT_EQ(world.chatLines[1].text, "> " + std::string(77, 'a') + " ");
  EXPECT_EQ(world.chatLines[0].text, "> " + std::string(20, 'b'));

  printChat(whole + std::string(76, 'a') + " " + std::string(20, 'b'), LineType::PublicChat);
  EXPECT_EQ(world.chatLines[2].text, whole);
  EXPECT_EQ(world.chatLines[1].text, "> " + std::string(76, 'a') + " " + std::string(11, 'b'));
  EXPECT_EQ(world.chatLines[0].text, "> " + std::string(9, 'b'));
}

TEST_F(Console, AContinuationKeepsItsLeadingBlanks) {
  printChat(std::string(90, 'x') + "   y", LineType::PublicChat);
  EXPECT_EQ(world.chatLines[1].text, std::string(90, 'x'));
  EXPECT_EQ(world.chatLines[0].text, ">    y") << "the mark, its blank and the three of the text";

  printChat(std::string(89, 'x') + "    y", LineType::PublicChat);
  EXPECT_EQ(world.chatLines[1].text, std::string(89, 'x') + " ") << "the split takes one of the blanks";
  EXPECT_EQ(world.chatLines[0].text, ">    y");
}

TEST_F(Console, LineSplitsAtABlankBetweenEightyAndNinety) {
  for (std::size_t p = 80; p <= 90; ++p) {
    const std::string text = std::string(p - 1, 'a') + " " + std::string(100 - p, 'b');
    const auto [first, rest] = splitChatLine(text);
    EXPECT_EQ(first, std::string(p - 1, 'a') + " ") << "the blank stays at " << p;
    EXPECT_EQ(rest, std::string(100 - p, 'b')) << p;
  }
}

TEST_F(Console, ABlankAtSeventyNineOrNinetyOneDoesNotCount) {
  for (const std::size_t p : {std::size_t{79}, std::size_t{91}}) {
    const std::string text = std::string(p - 1, 'a') + " " + std::string(100 - p, 'b');
    const auto [first, rest] = splitChatLine(text);
    EXPECT_EQ(first, text.substr(0, 90)) << p;
    EXPECT_EQ(rest, text.substr(90)) << p;
  }
}

TEST_F(Console, SplitsAtTheLastOfSeveralBlanks) {
  const std::string text = std::string(80, 'a') + " b c " + std::string(20, 'd');
  const auto [first, rest] = splitChatLine(text);
  EXPECT_EQ(first, std::string(80, 'a') + " b c ");
  EXPECT_EQ(rest, std::string(20, 'd'));
}

TEST_F(Console, ShortTextIsNotSplit) {
  const auto [first, rest] = splitChatLine(std::string(90, 'x'));
  EXPECT_EQ(first, "");
  EXPECT_EQ(rest, "");
}

TEST_F(Console, EmptyTextPrintsAnEmptyLine) {
  printChat("first", LineType::PublicChat);
  printChat("", LineType::PublicChat);
  EXPECT_EQ(world.chatLines[0].text, "");
  EXPECT_EQ(world.chatLines[1].text, "first");
}

TEST_F(Console, PlainLinesAreWhiteWhateverTheSettings) {
  for (std::int16_t purpose = 0; purpose < 5; ++purpose) {
    for (std::uint8_t channel = 0; channel < 3; ++channel) fontMan::setFontColour(purpose, channel, 7);
    fontMan::setFontSize(purpose, 16);
  }
  printChat("text", LineType::Plain);
  EXPECT_EQ(world.chatLines[0].colour, RGB(255, 255, 255));
  EXPECT_EQ(world.chatLines[0].size, 0);
}

TEST_F(Console, AChangeAppliesFromTheNextLineOn) {
  printChat("before", LineType::ServerMessage);
  fontMan::setFontColour(3, 2, 77);
  fontMan::setFontSize(3, 12);
  printChat("after", LineType::ServerMessage);
  EXPECT_EQ(world.chatLines[1].colour, RGB(255, 255, 0));
  EXPECT_EQ(world.chatLines[1].size, 9);
  EXPECT_EQ(world.chatLines[0].colour, RGB(255, 255, 77));
  EXPECT_EQ(world.chatLines[0].size, 12);
}

TEST_F(Console, TheLinesOutliveADisconnection) {
  printChat("stays", LineType::PublicChat);
  netMan::disconnectFromServer();
  EXPECT_EQ(world.chatLines[0].text, "stays");
}

TEST_F(Console, ChangesAreSavedUnderThePurposesKey) {
  fontMan::setFontColour(3, 1, 200);
  EXPECT_EQ(stored("3colorG"), "200");
  fontMan::setFontSize(0, 14);
  EXPECT_EQ(stored("0size"), "14");
  fontMan::setFontColour(4, 0, 100);
  EXPECT_EQ(stored("4colorR"), "100");
  fontMan::setFontColour(1, 2, 0);
  EXPECT_EQ(stored("1colorB"), "0");
  EXPECT_EQ(machine.settings.size(), 4U);
}

TEST_F(Console, UnknownChannelsAndPurposesChangeNothing) {
  fontMan::setFontColour(2, 3, 1);
  fontMan::setFontColour(2, 255, 1);
  fontMan::setFontColour(-1, 0, 1);
  fontMan::setFontColour(5, 0, 1);
  fontMan::setFontSize(-1, 12);
  fontMan::setFontSize(5, 12);
  EXPECT_TRUE(machine.settings.empty());
  EXPECT_EQ(fontMan::getFontColour(2), RGB(255, 0, 255));
}

TEST_F(Console, StoredFontsAreRestored) {
  for (const auto& [key, value] : {std::pair{"2size", "16"}, std::pair{"2colorR", "1"}, std::pair{"2colorG", "2"},
                                   std::pair{"2colorB", "3"}, std::pair{"2family", "Anything"}}) {
    machine.settings[{"fonts", key}] = value;
  }
  fontMan::initFonts();
  EXPECT_EQ(fontMan::getFontColour(2), RGB(1, 2, 3));
  EXPECT_EQ(fontMan::getFontSize(2), 16);
  EXPECT_EQ(fontMan::getFontSize(1), 9);
}

TEST_F(Console, NonNumericStoredValueIsAFault) {
  machine.settings[{"fonts", "0size"}] = "large";
  EXPECT_THROW(fontMan::initFonts(), RuntimeFault);
}

TEST_F(Console, AStoredColourOutsideAByteIsAFault) {
  machine.settings[{"fonts", "1colorG"}] = "256";
  EXPECT_THROW(fontMan::initFonts(), RuntimeFault);
  machine.settings[{"fonts", "1colorG"}] = "-1";
  EXPECT_THROW(fontMan::initFonts(), RuntimeFault);
}

TEST_F(Console, EveryKeyIsReadWithItsDefault) {
  fontMan::initFonts();
  ASSERT_EQ(machine.journal.size(), 25U);
  EXPECT_EQ(machine.journal[0], "read fonts/0size");
  EXPECT_EQ(machine.journal[24], "read fonts/4family");
}

}  // namespace
}  // namespace kelvora
