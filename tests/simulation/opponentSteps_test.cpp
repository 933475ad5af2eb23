#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/gameTest.h"

// An opponent's step and queue, and the effects of a ping.
namespace kelvora {
namespace {

// The local player is at (50000, 50000), so the canvas shows 44278 to 55723 across and 45440 to 54560 down.
class OpponentSteps : public GameTest {
 protected:
  OpponentSteps() {
    login();
    join(8, 1, "Bob", 50000, 50000);
    forgetSent();
    bob().steering = true;
    bob().velocity = {-30, -40};
  }
  clsPlayer& bob() { return modMain::world.opponents[0]; }
};

TEST_F(OpponentSteps, AnArrivalEndsTheStep) {
  bob().positionQueue = {{49800, 49900}, {49100, 47800}};
  bob().moveAsOpponent();
  // Arrives, then moves a seventh of (-700, -2100).
  EXPECT_EQ(bob().velocity, (Vector{-100, -300}));
  EXPECT_EQ(bob().position, (Vector{49700, 49600}));
}

TEST_F(OpponentSteps, OffCanvasReplayEndsTheStepToo) {
  bob().positionQueue = {{56000, 50000}, {53900, 47200}};
  bob().moveAsOpponent();
  EXPECT_EQ(bob().velocity, (Vector{-300, -400})) << "a seventh of (-2100, -2800)";
}

TEST_F(OpponentSteps, ZeroOnEitherAxisDiscardsTheStep) {
  for (const Vector step : {Vector{-30, 0}, Vector{0, -30}}) {
    bob().steering = true;
    bob().position = {50000, 50000};
    bob().velocity = step;
    bob().positionQueue = {{49300, 47900}};
    bob().moveAsOpponent();
    EXPECT_EQ(bob().velocity, (Vector{-100, -300}));
  }
}

TEST_F(OpponentSteps, NoStepIsTakenAfterTheLastPoint) {
  bob().positionQueue = {{49800, 49900}};
  bob().moveAsOpponent();
  EXPECT_EQ(bob().position, (Vector{49800, 49900}));
  EXPECT_FALSE(bob().steering);
  EXPECT_EQ(bob().velocity, (Vector{-30, -40})) << "it stays, and nobody moves";
}

TEST_F(OpponentSteps, QueueSurvivesDeathRespawnAndDisconnection) {
  bob().positionQueue = {{49000, 49000}, {48000, 48000}};
  bob().die();
  bob().respawn();
  bob().setAlive(false);
  netMan::disconnectFromServer();
  EXPECT_EQ(bob().positionQueueCount(), 2);
}

TEST_F(OpponentSteps, ANewLoginKeepsQueueAndTail) {
  bob().positionQueue = {{49000, 49000}};
  bob().addTail({300, 300});
  bob().init(yellowPlayer, 0, 8, "Bob");
  EXPECT_EQ(bob().positionQueueCount(), 1);
  EXPECT_EQ(bob().tailCount(), 1);
  EXPECT_TRUE(bob().awaitingFirstPosition);
}

TEST_F(OpponentSteps, ASelfCaptureKillsBeforeItCounts) {
  serverSends(wire::msgTailCapture, {"8", "8", "1", "1"});
  EXPECT_EQ(bob().captureCount(), 1);
  EXPECT_EQ(modMain::world.explosionCount, 0) << "nobody had been captured when Bob died";
}

TEST_F(OpponentSteps, PendingCaptureSurvivesADisconnection) {
  modMain::world.localPlayer.addTail({300, 300});
  serverSends(wire::msgTailCapture, {"7", "8", "300", "300"});
  netMan::disconnectFromServer();
  EXPECT_EQ(modMain::world.killerTails.size(), 1U);
}

TEST_F(OpponentSteps, ALatencyReportBeforeTheLoginDoesNothing) {
  modMain::world.localPlayer.isConnected = false;
  serverSends(wire::msgLatencyReport, {"41"});
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "0");
  EXPECT_EQ(modMain::world.localPlayer.reportedLag, 0);
}

TEST_F(OpponentSteps, APingsValueIsRoundedToEven) {
  machine.seconds = 4000;
  serverSends(wire::msgPing, {"1001.5"});
  EXPECT_EQ(modMain::world.localPlayer.clockOffset, 2998.0F);
  serverSends(wire::msgPing, {"1002.5"});
  EXPECT_EQ(modMain::world.localPlayer.clockOffset, 2998.0F);
}

TEST_F(OpponentSteps, Q260TheLocalVelocityIsNeverSent) {
  modMain::world.localPlayer.breaksOn = false;
  modMain::world.mousePos = {5722, 0};
  modMain::world.steerAngle = 45;
  modMain::world.steerQuadrant = 1;
  for (int frame = 0; frame < 40; ++frame) modMain::runFrame();
  serverSends(wire::msgPing, {"1000"});
  ASSERT_NE(modMain::world.localPlayer.velocity, Vector{});
  const auto sent = sentFrames();
  const auto countOf = [&sent](int id) {
    return std::count_if(sent.begin(), sent.end(), [id](const WireMessage& message) { return message.id == id; });
  };
  EXPECT_GT(countOf(wire::msgPositionReport), 9);
  EXPECT_EQ(countOf(wire::msgVelocityReport), 0);
}

TEST_F(OpponentSteps, Q261TheClockDifferenceChangesNothing) {
  machine.seconds = 4000;
  serverSends(wire::msgPing, {"1000"});
  const auto reply = sentFrames();
  forgetSent();
  modMain::world.localPlayer.clockOffset = -5;
  serverSends(wire::msgPing, {"-2000000000"});
  EXPECT_EQ(sentFrames(), reply) << "the client's own time, whatever the server's";
  EXPECT_EQ(modMain::world.localPlayer.clockOffset, 2000004000.0F);
}

}  // namespace
}  // namespace kelvora
