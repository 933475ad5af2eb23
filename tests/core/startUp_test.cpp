#include <gtest/gtest.h>

#include "frontend/fontMan.h"
#include "frontend/frmConnect.h"
#include "generated/version.h"
#include "rendering/frmGfx.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class StartUp : public GameTest {
 protected:
  /// Starts the game and ends it in the first DoEvents.
  void start() {
    machine.onDoEvents = [] { throw ProcessEnded{}; };
    EXPECT_THROW(modMain::startGame(), ProcessEnded);
  }

  /// The journal without the sheets, which are read on first use.
  std::vector<std::string> happenings() const {
    std::vector<std::string> found;
    for (const std::string& entry : machine.journal) {
      if (entry.find("/assets/") == std::string::npos) found.push_back(entry);
    }
    return found;
  }
};

TEST_F(StartUp, RunsItsStepsInOrder) {
  machine.scriptedDraws = {0.5F};  // the second track, so that the third one is next
  start();
  std::vector<std::string> expected = {"read audio/music", "read audio/sfx",    "read misc/directionalLine",
                                       "read misc/quarks", "read misc/updates", "randomize"};
  for (const std::string name :
       {"capture", "bounce", "error", "puShield", "puTurbo", "puChargedTail", "puLongTail", "puLaser", "puMissile"}) {
    expected.push_back("sound " + name + ".wav open");
  }
  expected.push_back("track " + machine.path + "/sounds/music3.mp3");
  for (const std::string purpose : {"0", "1", "2", "3", "4"}) {
    for (const std::string key : {"size", "colorR", "colorG", "colorB", "family"}) {
      expected.push_back("read fonts/" + purpose + key);
    }
  }
  for (const std::string& step :
       {std::string("show Kelvora v" KELVORA_VERSION), std::string("connect web.invalid:80"),
        "picture " + machine.path + "/kelvora.jpg", std::string("read last login/player name"),
        std::string("read last login/server address"), std::string("read last login/server port"),
        std::string("read last login/server password"), std::string("read last login/player color"),
        std::string("show Connect"), std::string("DoEvents")}) {
    expected.push_back(step);
  }
  EXPECT_EQ(happenings(), expected);
}

TEST_F(StartUp, ChecksForUpdatesOnlyIfTheMenuSaysSo) {
  machine.settings[{"misc", "updates"}] = "False";
  start();
  EXPECT_TRUE(machine.socketOf(frmMain->sockUpdates).connects.empty());
}

TEST_F(StartUp, AppendsTheVersionToTheCaption) {
  EXPECT_EQ(frmMain->Caption.get(), "Kelvora");
  start();
  EXPECT_EQ(frmMain->Caption.get(), "Kelvora v" KELVORA_VERSION);
}

TEST_F(StartUp, SeedsTheGeneratorFromTheTimeOfDay) {
  machine.seconds = 12345.5;
  start();
  EXPECT_EQ(machine.seeds, std::vector<float>{12345.5F});
}

TEST_F(StartUp, FillsTheColourNames) {
  modMain::world = {};
  start();
  const std::array<std::string, 6> names = {"Red", "Yellow", "Green", "Cyan", "Blue", "Purple"};
  EXPECT_EQ(modMain::world.colourNames, names);
}

TEST_F(StartUp, FillsSixOfTwentyTips) {
  modMain::world = {};
  start();
  ASSERT_EQ(modMain::world.tips.size(), 20U);
  EXPECT_EQ(modMain::world.tips[0], "Right-Click to release or engage breaks");
  EXPECT_EQ(modMain::world.tips[1], "Hold down the mouse button to prevent mouse from leaving viewport");
  EXPECT_EQ(modMain::world.tips[2], "Entrap your opponents in a loop of your tail");
  EXPECT_EQ(modMain::world.tips[3], "Spend credits before respawning");
  EXPECT_EQ(modMain::world.tips[4], "Use F-Keys to activate powerups");
  EXPECT_EQ(modMain::world.tips[5], "Shields will not protect from a tail-loop capture");
  for (std::size_t i = 6; i < 20; ++i) EXPECT_EQ(modMain::world.tips[i], "") << i;
}

TEST_F(StartUp, ShowsBothWindowsModeless) {
  start();
  EXPECT_TRUE(frmMain.isVisible());
  EXPECT_TRUE(frmConnect.isVisible());
  EXPECT_TRUE(machine.modalForms.empty());
}

TEST_F(StartUp, ShowsTheStateOfTheSocketAndIdleButtons) {
  start();
  EXPECT_EQ(frmMain->lblNetStatus.Caption.get(), "Closed");
  EXPECT_EQ(frmMain->btnSpawn.background(), frmGfx->imgBtnPlay[0].Picture.get());
  EXPECT_EQ(frmMain->btnShop.background(), frmGfx->imgBtnStore[0].Picture.get());
}

TEST_F(StartUp, ShowsTheTitleAndItsClickArea) {
  start();
  EXPECT_TRUE(frmMain->lbcConnect.Visible);
  EXPECT_EQ(frmMain->canvas.MousePointer, 0);
}

TEST_F(StartUp, LoadsTheFontsFromTheSettings) {
  machine.settings[{"fonts", "3size"}] = "14";
  start();
  EXPECT_EQ(fontMan::getFontSize(3), 14);
}

TEST_F(StartUp, MalformedBooleanInTheSettingsIsAFault) {
  machine.settings[{"misc", "updates"}] = "maybe";
  EXPECT_THROW(modMain::startGame(), RuntimeFault);
}

TEST_F(StartUp, SameTimeOfDayGivesTheSameDraws) {
  machine.seconds = 100;
  machine.commandLineText = "nomusic";  // it begins with a draw
  start();
  const float first = Rnd();
  Randomize(100);
  EXPECT_EQ(Rnd(), first);
}

}  // namespace
}  // namespace kelvora
