#include "base/fault.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class ConsoleCommands : public GameTest {
 protected:
  ConsoleCommands() {
    login();
    modMain::world.chatLines = {};
  }
  void enter(const std::string& line) {
    frmMain->txtChat.Text = line;
    frmMain->txtChat.KeyDown(13, 0);
    frmMain->txtChat.KeyPress(13);
  }
  std::vector<int> types() {
    std::vector<int> found;
    for (const clsParticle& particle : modMain::world.particles) {
      const int type = static_cast<int>(particle.type);
      if (found.empty() || found.back() != type) found.push_back(type);
      if (&particle == &modMain::world.particles[149]) break;
    }
    return found;
  }
};

TEST_F(ConsoleCommands, QuestionMarkListsTheVerbs) {
  enter("~?");
  EXPECT_EQ(machine.messageBoxes,
            std::vector<std::string>{
                "?,playsound,reloadsounds,showmusic,hidemusic,unloadmusic,loadmusic,playmusic,quarktype,showstore"});
}

TEST_F(ConsoleCommands, AreNeitherSentNorPrintedButStoredInTheHistory) {
  enter("~?");
  EXPECT_TRUE(server().sent.empty());
  EXPECT_EQ(modMain::world.chatLines[0].text, "");
  EXPECT_EQ(frmMain->chatHistory[0], "~?");
  EXPECT_EQ(frmMain->txtChat.Text.get(), "");
}

TEST_F(ConsoleCommands, UnknownAndEmptyVerbsDoNothing) {
  enter("~");
  enter("~:");
  enter("~nonsense:1");
  enter("~??");
  enter("~\xE9?");
  EXPECT_TRUE(machine.messageBoxes.empty());
  EXPECT_TRUE(server().sent.empty());
  EXPECT_EQ(modMain::world.chatLines[0].text, "");
}

TEST_F(ConsoleCommands, QuarkTypeInitialisesTheWholeFieldInPlace) {
  std::vector<Vector> places;
  for (int i = 0; i < 150; ++i) places.push_back(modMain::world.particles[static_cast<std::size_t>(i)].getPosition());
  enter("~quarktype:2");
  EXPECT_EQ(types(), std::vector<int>{2});
  for (int i = 0; i < 150; ++i) {
    const clsParticle& particle = modMain::world.particles[static_cast<std::size_t>(i)];
    EXPECT_EQ(particle.getPosition(), places[static_cast<std::size_t>(i)]) << i;
    EXPECT_EQ(particle.num_, i);
  }
}

TEST_F(ConsoleCommands, VerbsAreTrimmedAndIgnoreCase) {
  enter("~QUARKTYPE:3");
  EXPECT_EQ(types(), std::vector<int>{3});
  enter("~ quarktype :1");
  EXPECT_EQ(types(), std::vector<int>{1});
}

TEST_F(ConsoleCommands, OnlyTheSecondPartIsTheArgument) {
  enter("~quarktype:3:9");
  EXPECT_EQ(types(), std::vector<int>{3});
}

TEST_F(ConsoleCommands, ArgumentsAreReadLenientlyAndRounded) {
  enter("~quarktype:2.5");
  EXPECT_EQ(types(), std::vector<int>{2});
  enter("~quarktype:3abc");
  EXPECT_EQ(types(), std::vector<int>{3});
  enter("~quarktype:abc");
  EXPECT_EQ(types(), std::vector<int>{0});
  EXPECT_THROW(enter("~quarktype:256"), RuntimeFault);
}

TEST_F(ConsoleCommands, Q082AVerbWithoutAnArgumentEndsTheClient) {
  EXPECT_THROW(enter("~quarktype"), RuntimeFault);
  enter("~quarktype:");
  EXPECT_EQ(types(), std::vector<int>{0}) << "an empty argument is there, and reads as 0";
}

TEST_F(ConsoleCommands, TildeLaterInALineIsChat) {
  enter("a~?");
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{wire::msgChat, {"-1", "a~?"}}}));
  EXPECT_TRUE(machine.messageBoxes.empty());
}

}  // namespace
}  // namespace kelvora
