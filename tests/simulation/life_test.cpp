#include <gtest/gtest.h>

#include <memory>

#include "audio/soundMan.h"
#include "base/fault.h"
#include "tests/support/countingPeer.h"
#include "tests/support/gameTest.h"

// The effects of each death, and the state that survives a death, a round's end or a new login.
namespace kelvora {
namespace {

// Ann is the local player, red, node 7. Bob is next to her in slot 0, yellow, node 8. All effects are open.
class Lives : public GameTest {
 protected:
  Lives() {
    login(0, 7);
    join(8, 1, "Bob", 50500, 50000);
    soundMan::initAudio();
    machine.soundCommands.clear();
  }
  clsPlayer& ann() { return modMain::world.localPlayer; }
  clsPlayer& bob() { return modMain::world.opponents[0]; }
  /// Ann captures Bob at a point without a known vertex, so the capture is carried out at once.
  void captureBob() { serverSends(wire::msgTailCapture, {"7", "8", "1", "1"}); }
  const std::vector<std::string> captureSound{"capture.wav Silent False", "capture.wav prev", "capture.wav play"};
};

TEST_F(Lives, TheStripIsShownAtEachCaptureAndRespawn) {
  int shown = 0;
  frmMain->picCaps[0].peer = std::make_unique<CountingPeer>(shown);
  captureBob();
  EXPECT_EQ(shown, 1);
  ann().init(redPlayer, -1, 7, "Ann");
  EXPECT_EQ(shown, 1) << "a new login keeps the marks";
  ann().respawn();
  EXPECT_EQ(shown, 2);
  frmMain->picCaps[0].peer.reset();
}

TEST_F(Lives, DeadVictimDiesAgain) {
  bob().captures = {greenPlayer, cyanPlayer};
  captureBob();
  ASSERT_FALSE(bob().alive);
  ASSERT_EQ(modMain::world.explosionCount, 2);
  ASSERT_EQ(machine.soundCommands, captureSound);
  machine.soundCommands.clear();
  captureBob();
  EXPECT_EQ(modMain::world.explosionCount, 4);
  EXPECT_EQ(machine.soundCommands, captureSound);
}

TEST_F(Lives, OneCaptureMakesOneExplosionParticle) {
  bob().captures = {greenPlayer};
  bob().die();
  EXPECT_EQ(modMain::world.explosionCount, 1);
}

TEST_F(Lives, ARoundsEndKillsWithoutSoundOrExplosion) {
  for (clsPlayer* player : {&ann(), &bob()}) {
    player->captures = {greenPlayer, cyanPlayer};
    player->setAlive(false);
    EXPECT_FALSE(player->alive);
  }
  EXPECT_TRUE(machine.soundCommands.empty());
  EXPECT_EQ(modMain::world.explosionCount, 0);
}

TEST_F(Lives, InitKeepsFlightReportsAnimationAndCaptures) {
  for (clsPlayer* player : {&ann(), &bob()}) {
    player->velocity = {12, -7};
    player->reportCounter = 2;
    player->animFalling = true;
    player->animFrame = 3;
    player->animTick = 6;
    player->captures = {greenPlayer, purplePlayer};
    player->lastPosition = {40000, 41000};
    player->lastAgeTick = 999'990;
    player->lastPowerupTick = 17;
    player->steering = true;
    player->init(player->colour, player->playerIndex, player->serverNode, player->name);
    EXPECT_EQ(player->velocity, (Vector{12, -7}));
    EXPECT_EQ(player->reportCounter, 2);
    EXPECT_TRUE(player->animFalling);
    EXPECT_EQ(player->animFrame, 3);
    EXPECT_EQ(player->animTick, 6);
    EXPECT_EQ(player->captures, (std::vector<PlayerColour>{greenPlayer, purplePlayer}));
    EXPECT_EQ(player->lastPosition, (Vector{40000, 41000})) << "an active laser beams from there";
    EXPECT_EQ(player->lastAgeTick, 999'990);
    EXPECT_EQ(player->lastPowerupTick, 17);
    EXPECT_TRUE(player->steering);
  }
}

TEST_F(Lives, KillsAreCountedInSixteenBits) {
  ann().setKills(32766);
  captureBob();
  EXPECT_EQ(ann().kills, 32767);
  EXPECT_THROW(ann().receiveCapture(bluePlayer), RuntimeFault);
  EXPECT_EQ(ann().kills, 32767);
  EXPECT_EQ(ann().captures, (std::vector<PlayerColour>{yellowPlayer, bluePlayer}))
      << "the capture is recorded before it is counted";
  EXPECT_EQ(frmMain->lblKills[0].Caption.get(), "32767");
}

TEST_F(Lives, TheLagIsCountedInThirtyTwoBits) {
  serverSends(wire::msgPing, {"1000"});
  tick(2'147'483'647);
  ann().receiveLatencyReport(41);
  EXPECT_EQ(ann().lag, 2'147'483'647);
  tick(1);
  EXPECT_THROW(ann().receiveLatencyReport(42), RuntimeFault);
  EXPECT_EQ(ann().lag, 2'147'483'647);
  EXPECT_EQ(ann().reportedLag, 41);
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "2147483647/41");
}

}  // namespace
}  // namespace kelvora
