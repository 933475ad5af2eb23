#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "base/fault.h"
#include "frontend/console.h"
#include "frontend/fontMan.h"
#include "rendering/frmGfx.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

constexpr std::int16_t localNode = 7;

// Ann is the local player, red, node 7; Bob and Cid are the opponents in slots 0 and 1, yellow and green, nodes 8
// and 9.
class Captures : public GameTest {
 protected:
  Captures() {
    login(0, localNode);
    join(8, 1, "Bob", 50500, 50000);
    join(9, 2, "Cid", 50000, 50500);
    forgetSent();
  }
  clsPlayer& ann() { return modMain::world.localPlayer; }
  clsPlayer& bob() { return modMain::world.opponents[0]; }
  clsPlayer& cid() { return modMain::world.opponents[1]; }

  void capture(std::int16_t winner, std::int16_t loser, const std::string& x, const std::string& y) {
    serverSends(wire::msgTailCapture, {std::to_string(winner), std::to_string(loser), x, y});
  }
  /// Ages all tails until the vertices laid so far have expired.
  void outliveTails() {
    modMain::paintFrame();
    tick(10);
    modMain::paintFrame();
    tick(2020);
    modMain::paintFrame();
  }
  std::string newestLine() { return modMain::world.chatLines[0].text; }
};

TEST_F(Captures, AnUnknownVertexCapturesAtOnce) {
  capture(8, 9, "12345", "6789");
  EXPECT_FALSE(cid().isAlive());
  EXPECT_EQ(bob().kills, 1);
  EXPECT_EQ(newestLine(), "Bob has captured Cid");
  EXPECT_TRUE(modMain::world.killerTails.empty());
}

TEST_F(Captures, CaptureWaitsUntilItsVertexExpires) {
  ann().addTail({100.5F, 200});
  capture(localNode, 9, "100.5", "200");
  ASSERT_EQ(modMain::world.killerTails.size(), 1U);
  const KillerTail& record = modMain::world.killerTails[0];
  EXPECT_EQ(record.owner, -1);
  EXPECT_EQ(record.tailID, ann().tails[0].tailID());
  EXPECT_EQ(record.victims, (std::vector<std::int16_t>{1}));
  EXPECT_EQ(record.location, "(100.5,200)");
  EXPECT_TRUE(cid().isAlive());
  outliveTails();
  EXPECT_FALSE(cid().isAlive());
  EXPECT_TRUE(modMain::world.killerTails.empty());
  EXPECT_EQ(ann().tailCount(), 0);
  EXPECT_EQ(modMain::world.centreMessage, "You have captured Cid");
}

TEST_F(Captures, TwoVictimsOfOneVertexDieTogetherInOrder) {
  cid().addTail({300, 300});
  capture(9, 8, "300", "300");
  capture(9, localNode, "300", "300");
  ASSERT_EQ(modMain::world.killerTails.size(), 1U);
  EXPECT_EQ(modMain::world.killerTails[0].victims, (std::vector<std::int16_t>{0, -1}));
  outliveTails();
  EXPECT_FALSE(bob().isAlive());
  EXPECT_FALSE(ann().isAlive());
  EXPECT_EQ(cid().captures, (std::vector<PlayerColour>{yellowPlayer, redPlayer}));
  EXPECT_EQ(modMain::world.chatLines[1].text, "Cid has captured Bob");
  EXPECT_EQ(newestLine(), "Cid has captured Ann");
}

TEST_F(Captures, Q106OnlyThePositionIsComparedNotTheWinner) {
  cid().addTail({300, 300});
  ann().addTail({300, 300});
  capture(9, 8, "300", "300");
  capture(localNode, 8, "300", "300");
  ASSERT_EQ(modMain::world.killerTails.size(), 1U);
  EXPECT_EQ(modMain::world.killerTails[0].owner, 1);
  EXPECT_EQ(modMain::world.killerTails[0].tailID, cid().tails[0].tailID());
  EXPECT_EQ(modMain::world.killerTails[0].victims, (std::vector<std::int16_t>{0, 0}));
}

TEST_F(Captures, Q104OneCaptureDropsItsWinnersOtherPendingOnes) {
  cid().addTail({300, 300});
  tick(10);
  capture(9, 8, "300", "300");
  modMain::paintFrame();
  tick(10);
  modMain::paintFrame();
  tick(1000);
  cid().addTail({400, 400});
  capture(9, localNode, "400", "400");
  ann().addTail({500, 500});
  capture(localNode, 8, "500", "500");
  ASSERT_EQ(modMain::world.killerTails.size(), 3U);
  tick(1100);
  modMain::paintFrame();
  EXPECT_FALSE(bob().isAlive());
  ASSERT_EQ(modMain::world.killerTails.size(), 1U) << "the record of another owner stays";
  EXPECT_EQ(modMain::world.killerTails[0].owner, -1);
  outliveTails();
  outliveTails();
  EXPECT_EQ(cid().tailCount(), 0);
  EXPECT_TRUE(ann().isAlive()) << "the dropped capture never lands";
}

TEST_F(Captures, Q105TheWinnerInSlotZeroCapturesAtTheNextPaint) {
  bob().addTail({300, 300});
  bob().addTail({310, 300});
  capture(8, 9, "300", "300");
  ASSERT_EQ(modMain::world.killerTails.size(), 1U);
  modMain::paintFrame();
  EXPECT_FALSE(cid().isAlive());
  EXPECT_EQ(bob().tailCount(), 2) << "the vertex is still there";
}

TEST_F(Captures, Q105OthersWaitUntilTheVertexExpires) {
  for (clsPlayer* winner : {&ann(), &cid()}) {
    winner->addTail({300, 300});
    winner->addTail({310, 300});
  }
  capture(localNode, 9, "300", "300");
  modMain::paintFrame();
  EXPECT_TRUE(cid().isAlive());
  modMain::world.killerTails.clear();
  capture(9, 8, "300", "300");
  modMain::paintFrame();
  EXPECT_TRUE(bob().isAlive());
}

TEST_F(Captures, Q105PaintingSkipsTheNewestVertex) {
  bob().addTail({300, 300});
  bob().addTail({310, 300});
  capture(8, 9, "310", "300");
  modMain::paintFrame();
  EXPECT_TRUE(cid().isAlive());
}

TEST_F(Captures, PaintingATailOfOneVertexChecksNothing) {
  bob().addTail({300, 300});
  capture(8, 9, "300", "300");
  modMain::paintFrame();
  EXPECT_TRUE(cid().isAlive());
}

TEST_F(Captures, UnderAnExtendedTailTheCaptureWaits) {
  cid().addTail({300, 300});
  capture(9, 8, "300", "300");
  modMain::paintFrame();
  tick(10);
  modMain::paintFrame();
  cid().powerups[extendedTailSlot].active = true;
  tick(5000);
  modMain::paintFrame();
  EXPECT_TRUE(bob().isAlive());
  cid().powerups[extendedTailSlot].active = false;
  tick(10);
  modMain::paintFrame();
  EXPECT_FALSE(bob().isAlive());
}

TEST_F(Captures, RecordIsFoundByBothOwnerAndId) {
  modMain::world.killerTails = {{0, "a", {1}, ""}, {1, "a", {0}, ""}, {1, "b", {0}, ""}};
  EXPECT_EQ(modMain::findKillerTail(1, "a"), 1);
  EXPECT_EQ(modMain::findKillerTail(1, "b"), 2);
  EXPECT_EQ(modMain::findKillerTail(-1, "a"), -1);
  EXPECT_EQ(modMain::findKillerTail(0, "b"), -1);
}

TEST_F(Captures, UnknownRecordDoesNothing) {
  modMain::world.killerTails = {{0, "a", {1}, ""}};
  modMain::executeKillerTail(-1);
  modMain::executeKillerTail(1);
  EXPECT_EQ(modMain::world.killerTails.size(), 1U);
  EXPECT_TRUE(cid().isAlive());
}

TEST_F(Captures, LocalLoserIsNotified) {
  capture(9, localNode, "1", "1");
  EXPECT_FALSE(ann().isAlive());
  EXPECT_EQ(modMain::world.centreMessage, "You have been captured!");
  EXPECT_EQ(newestLine(), "Cid has captured Ann");
}

TEST_F(Captures, BothRolesShowTheSecondMessage) {
  capture(localNode, localNode, "1", "1");
  EXPECT_EQ(modMain::world.centreMessage, "You have captured Ann");
  EXPECT_EQ(ann().kills, 1);
  EXPECT_FALSE(ann().isAlive());
}

TEST_F(Captures, TheConsoleLineIsAServerMessage) {
  capture(9, 8, "1", "1");
  const Colour serverColour = modMain::world.chatLines[0].colour;
  printChat("x", LineType::ServerMessage);
  EXPECT_EQ(modMain::world.chatLines[0].colour, serverColour);
}

TEST_F(Captures, Q107OnlyAPlayerWithCapturesExplodes) {
  capture(9, 8, "1", "1");
  EXPECT_EQ(modMain::world.explosionCount, 0) << "Bob had captured nobody";
  capture(9, localNode, "1", "1");
  capture(8, 9, "1", "1");
  ASSERT_EQ(modMain::world.explosionCount, 2) << "one for each of Cid's captures";
  EXPECT_EQ(modMain::world.explosionParticles[0].getPosition(), cid().position);
}

TEST_F(Captures, DyingKeepsCapturesVelocityAndTail) {
  bob().addTail({1, 1});
  bob().captures = {greenPlayer};
  bob().breaksOn = false;
  bob().velocity = {4, 5};
  bob().die();
  EXPECT_FALSE(bob().alive);
  EXPECT_TRUE(bob().isConnected);
  EXPECT_FALSE(bob().breaksOn);
  EXPECT_EQ(bob().velocity, (Vector{4, 5}));
  EXPECT_EQ(bob().captures, (std::vector<PlayerColour>{greenPlayer}));
  EXPECT_EQ(bob().tailCount(), 1);
}

TEST_F(Captures, Q108ADeadVictimCanBeCapturedAgain) {
  capture(9, 8, "1", "1");
  capture(9, 8, "1", "1");
  EXPECT_EQ(cid().kills, 2);
  EXPECT_EQ(cid().captureCount(), 2);
  EXPECT_EQ(frmMain->lblKills[2].Caption.get(), "2");
}

TEST_F(Captures, ACaptureMarksTheVictimsCellInTheStrip) {
  capture(9, 8, "1", "1");
  const Picture& sheet = frmGfx->imgCaps.cells();
  const PictureBox& strip = frmMain->picCaps[2];
  // Yellow's cell starts at 975 / 6 = 162.5 twips, pixel 11; its middle is pixel 16.
  for (const int y : {0, 5, 10}) {
    const std::size_t at = static_cast<std::size_t>(y * strip.pixelWidth() + 16);
    EXPECT_EQ(strip.pixels()[at], sheet.pixels[static_cast<std::size_t>(y * sheet.width + 16)]);
    EXPECT_EQ(strip.pixels()[static_cast<std::size_t>(y * strip.pixelWidth() + 5)], 0U) << "red's cell stays empty";
  }
  EXPECT_NE(strip.pixels()[static_cast<std::size_t>(5 * strip.pixelWidth() + 16)], 0U);
  const std::vector<Pixel> before(strip.pixels().begin(), strip.pixels().end());
  capture(9, 8, "1", "1");
  EXPECT_TRUE(std::equal(before.begin(), before.end(), strip.pixels().begin())) << "drawn on the same spot";
}

TEST_F(Captures, ARespawnKeepsTheKillsAndEmptiesTheStrip) {
  capture(9, 8, "1", "1");
  capture(8, 9, "1", "1");
  serverSends(wire::msgRespawn, {"9"});
  EXPECT_TRUE(cid().isAlive());
  EXPECT_EQ(cid().kills, 1);
  EXPECT_EQ(cid().captureCount(), 0);
  for (const Pixel pixel : frmMain->picCaps[2].pixels()) ASSERT_EQ(pixel, 0U);
}

TEST_F(Captures, Q109ARespawnLeavesThePlayerWhereTheGhostWas) {
  ann().die();
  ann().position = {1234, 4321};
  ann().respawn();
  EXPECT_EQ(ann().position, (Vector{1234, 4321}));
  EXPECT_TRUE(ann().breaksOn);
}

TEST_F(Captures, ARespawnOfTheLocalPlayerShowsTheNextTip) {
  modMain::world.tips[0] = "first tip";
  modMain::world.nextTip = 0;
  bob().respawn();
  EXPECT_EQ(modMain::world.nextTip, 0);
  ann().respawn();
  EXPECT_EQ(modMain::world.centreMessage, "first tip");
  EXPECT_EQ(modMain::world.nextTip, 1);
}

TEST_F(Captures, SetAliveTrueShowsATipOnlyForTheLocalPlayer) {
  modMain::world.tips[0] = "first tip";
  bob().setAlive(true);
  EXPECT_EQ(modMain::world.nextTip, 0);
  ann().setAlive(true);
  EXPECT_EQ(modMain::world.centreMessage, "first tip");
  ann().setAlive(false);
  EXPECT_EQ(modMain::world.nextTip, 1) << "no tip for the dead";
}

TEST_F(Captures, SetKillsShowsTheNumber) {
  bob().setKills(12);
  EXPECT_EQ(bob().kills, 12);
  EXPECT_EQ(frmMain->lblKills[1].Caption.get(), "12");
}

TEST_F(Captures, AnUnknownWinnerIsTakenForSlotZero) {
  capture(77, 9, "1", "1");
  EXPECT_EQ(newestLine(), "Bob has captured Cid");
}

TEST_F(Captures, WithoutOpponentsAnUnknownNodeEndsTheHandler) {
  modMain::world.opponents.clear();
  modMain::world.opponentCount = 0;
  EXPECT_THROW(modMain::addKillerTail(77, localNode, 1, 1), RuntimeFault);
  capture(77, localNode, "1", "1");
  EXPECT_TRUE(ann().isAlive());
}

TEST_F(Captures, ADepartedWinnersRecordNeverFires) {
  cid().addTail({300, 300});
  capture(9, 8, "300", "300");
  serverSends(wire::msgPlayerLeft, {"9"});
  outliveTails();
  EXPECT_TRUE(bob().isAlive());
  EXPECT_EQ(modMain::world.killerTails.size(), 1U);
  EXPECT_EQ(cid().tailCount(), 1) << "frozen";
}

TEST_F(Captures, Q103TheSlotAfterTheLastIsAFaultButFartherOnesAreNot) {
  bob().addTail({1, 1});
  modMain::killTailOf(0, 0);
  EXPECT_EQ(bob().tailCount(), 0);
  ann().addTail({1, 1});
  modMain::killTailOf(-1, 0);
  EXPECT_EQ(ann().tailCount(), 0);
  EXPECT_THROW(modMain::killTailOf(2, 0), RuntimeFault);
  modMain::killTailOf(3, 0);
  modMain::killTailOf(-2, 0);
}

TEST_F(Captures, APoweredShieldDoesNotHelp) {
  bob().powerups[shieldSlot].active = true;
  capture(9, 8, "1", "1");
  EXPECT_FALSE(bob().isAlive());
}

}  // namespace
}  // namespace kelvora
