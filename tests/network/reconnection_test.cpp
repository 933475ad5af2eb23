#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "core/timeScale.h"
#include "rendering/frmGfx.h"
#include "store/frmPowerups.h"
#include "tests/support/gameTest.h"

// State that survives a disconnection and the next login.
namespace kelvora {
namespace {

class Reconnection : public GameTest {
 protected:
  Reconnection() {
    login(2, 7);
    join(8, 4, "Bob");
  }
};

TEST_F(Reconnection, KeepsTheBordersPulse) {
  modMain::world.borderShrinking = true;
  modMain::world.borderWidth = 3;
  modMain::world.borderCounter = 2;
  netMan::disconnectFromServer();
  login(2, 7);
  EXPECT_TRUE(modMain::world.borderShrinking);
  EXPECT_EQ(modMain::world.borderWidth, 3);
  EXPECT_EQ(modMain::world.borderCounter, 2);
}

TEST_F(Reconnection, KeepsThePaintTimes) {
  modMain::world.frameTime = 17;
  std::fill(modMain::world.frameTimes.begin(), modMain::world.frameTimes.end(), 17);
  netMan::disconnectFromServer();
  login(2, 7);
  EXPECT_EQ(modMain::world.frameTime, 17);
  EXPECT_EQ(std::count(modMain::world.frameTimes.begin(), modMain::world.frameTimes.end(), 17), 101);
  EXPECT_EQ(modMain::getTimeScale(), 1.7);
}

TEST_F(Reconnection, KeepsTheCentreMessageUntilTheLoginReplacesIt) {
  modMain::showCentreMessage("You have captured Bob");
  modMain::world.centreMessageAge = 40;
  netMan::disconnectFromServer();
  connect();
  EXPECT_EQ(modMain::world.centreMessage, "You have captured Bob");
  EXPECT_EQ(modMain::world.centreMessageAge, 40);
  serverSends(wire::msgLoginAccepted, {"2", "7", "50000", "50000"});
  EXPECT_EQ(modMain::world.centreMessage, "Capture your opponents in a loop of your tail");
  EXPECT_EQ(modMain::world.centreMessageAge, 0);
}

TEST_F(Reconnection, KeepsTheNextTip) {
  modMain::showNextTip();
  modMain::showNextTip();
  netMan::disconnectFromServer();
  login(2, 7);
  EXPECT_EQ(modMain::world.nextTip, 2);
}

TEST_F(Reconnection, Q310KeepsTheRoundsMessage) {
  serverSends(wire::msgRoundOver, {"Bob wins"});
  netMan::disconnectFromServer();
  modMain::openStore();
  EXPECT_EQ(frmPowerups->lblWinners.Caption.get(), "Bob wins");
  frmPowerups.unload();
  login(2, 7);
  modMain::openStore();
  EXPECT_EQ(frmPowerups->lblWinners.Caption.get(), "Bob wins");
}

TEST_F(Reconnection, Q311KeepsTheButtonsLitUntilARespawn) {
  const auto lit = [] {
    return std::pair{frmMain->btnSpawn.background() == frmGfx->imgBtnPlay[1].Picture.get(),
                     frmMain->btnShop.background() == frmGfx->imgBtnStore[1].Picture.get()};
  };
  serverSends(wire::msgRoundOver, {"Bob wins"});
  netMan::disconnectFromServer();
  EXPECT_EQ(lit(), std::pair(true, true));
  login(2, 7);
  EXPECT_TRUE(modMain::world.localPlayer.alive);
  EXPECT_EQ(lit(), std::pair(true, true));
  serverSends(wire::msgRespawn, {"7"});
  EXPECT_EQ(lit(), std::pair(false, false));
}

TEST_F(Reconnection, KeepsTheExplosions) {
  modMain::addExplosion({50000, 50000}, 2);
  netMan::disconnectFromServer();
  login(2, 7);
  EXPECT_EQ(modMain::world.explosionCount, 2);
  EXPECT_EQ(modMain::world.explosionParticles.size(), 2U);
}

// The capture marks disappear from the panel with the title. The captures themselves stay and explode at the next
// death.
TEST_F(Reconnection, KeepsTheCaptures) {
  serverSends(wire::msgTailCapture, {"7", "8", "1", "1"});
  modMain::world.opponents[0].captures = {purplePlayer};
  netMan::disconnectFromServer();
  EXPECT_EQ(modMain::world.localPlayer.captures, (std::vector<PlayerColour>{bluePlayer}));
  login(2, 7);
  EXPECT_EQ(modMain::world.localPlayer.captures, (std::vector<PlayerColour>{bluePlayer}));
  EXPECT_EQ(modMain::world.opponents[0].captures, (std::vector<PlayerColour>{purplePlayer}));
  modMain::world.localPlayer.die();
  EXPECT_EQ(modMain::world.explosionCount, 1);
}

TEST_F(Reconnection, Q309KeepsTheKillsOnThePanel) {
  serverSends(wire::msgTailCapture, {"7", "8", "1", "1"});
  modMain::world.opponents[0].setKills(5);
  netMan::disconnectFromServer();
  EXPECT_EQ(frmMain->lblKills[2].Caption.get(), "1");
  EXPECT_EQ(frmMain->lblKills[4].Caption.get(), "5");
  login(2, 7);
  EXPECT_EQ(modMain::world.localPlayer.kills, 0);
  EXPECT_EQ(frmMain->lblKills[2].Caption.get(), "1") << "until the first capture is counted";
  EXPECT_EQ(frmMain->lblKills[4].Caption.get(), "5");
}

TEST_F(Reconnection, Q309KeepsCreditsAndLatencyOnThePanel) {
  serverSends(wire::msgFunds, {"7", "75"});
  serverSends(wire::msgPing, {"1000"});
  tick(30);
  serverSends(wire::msgLatencyReport, {"41"});
  netMan::disconnectFromServer();
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "75");
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "30/41");
  login(2, 7);
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "10");
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "30/41") << "until the first report";
}

TEST_F(Reconnection, Q314KeepsTheChatPartner) {
  netMan::selectPrivateTarget("Bob");
  netMan::disconnectFromServer();
  EXPECT_EQ(frmMain->lblPrivChat.Caption.get(), "Bob");
  login(2, 7);
  EXPECT_EQ(frmMain->lblPrivChat.Caption.get(), "Bob");
  netMan::sendChat("hello");
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{wire::msgChat, {"0", "(private) hello"}}}));
}

}  // namespace
}  // namespace kelvora
