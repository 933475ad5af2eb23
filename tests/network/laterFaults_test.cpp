// Server messages that are harmless on arrival and end the program frames later, as the rules of the game require. Next
// to each is the nearest harmless one.

#include <gtest/gtest.h>

#include <string>

#include "base/fault.h"
#include "platform/backend.h"
#include "store/frmPowerups.h"
#include "tests/support/faultOf.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::world;

class LaterFaults : public GameTest {
 protected:
  /// Runs frames of 20 ms and returns the fault, if any. At `timeScale` 1 painting takes no time.
  void runFrames(int count, int timeScale = 1) {
    for (int i = 0; i < count; ++i) {
      tick(20);
      world.frameTime = timeScale * 10;
      modMain::runFrame();
    }
  }
  /// Runs longer than a vertex lives.
  void runPastAVertex() { runFrames(120); }
  std::string faultOfFrames(int count, int timeScale = 1) {
    return faultOf([&] { runFrames(count, timeScale); });
  }
};

TEST_F(LaterFaults, Q300ATailLaidBeforeTheLoginFaultsWithoutASlot) {
  connect();
  serverSends(wire::msgAliveState, {"0", "1"});
  serverSends(wire::msgPosition, {"0", "50100", "50000"});
  ASSERT_EQ(world.localPlayer.tailCount(), 1);
  serverSends(wire::msgLoginAccepted, {"0", "7", "50000", "50000"});
  EXPECT_EQ(faultOfFrames(100), "") << "two seconds";
  EXPECT_EQ(faultOfFrames(20), "Subscript out of range");
}

TEST_F(LaterFaults, Q300ATailLaidBeforeTheLoginStaysWithASlot) {
  connect();
  serverSends(wire::msgAliveState, {"0", "1"});
  serverSends(wire::msgPosition, {"0", "50100", "50000"});
  serverSends(wire::msgLoginAccepted, {"0", "7", "50000", "50000"});
  join(8, 1, "Bob");
  runPastAVertex();
  EXPECT_EQ(world.localPlayer.tailCount(), 1);
}

class CaptureLater : public LaterFaults {
 protected:
  CaptureLater() { login(); }
  /// Lets a capture of `loserNode` wait for a vertex of the local player.
  void captureWaitsFor(const std::string& loserNode) {
    serverSends(wire::msgPosition, {"7", "50100", "50000"});
    serverSends(wire::msgTailCapture, {"7", loserNode, "50100", "50000"});
    ASSERT_EQ(world.killerTails.size(), 1U);
  }
  /// Bob, who already has this many kills, captures the local player. A vertex of slot 0 that is not the newest is
  /// carried out at once.
  std::string bobCaptures(const std::string& kills) {
    serverSends(wire::msgPlayerJoined, {"8", "1", "Bob", "50000", "50000", "1", kills});
    serverSends(wire::msgPosition, {"8", "90000", "90000"});
    serverSends(wire::msgPosition, {"8", "91000", "90000"});
    runFrames(1);
    serverSends(wire::msgTailCapture, {"8", "7", "90000", "90000"});
    EXPECT_EQ(world.killerTails.size(), 1U);
    return faultOfFrames(1);
  }
};

TEST_F(CaptureLater, Q304OfAnUnknownLoserWithoutOpponentsIsAFault) {
  captureWaitsFor("99");
  EXPECT_EQ(faultOfFrames(120), "Subscript out of range");
}

TEST_F(CaptureLater, Q304OfAnUnknownLoserIsTheFirstOpponent) {
  join(8, 1, "Bob");
  captureWaitsFor("99");
  runPastAVertex();
  EXPECT_FALSE(world.opponents[0].alive);
  EXPECT_EQ(world.localPlayer.kills, 1);
}

TEST_F(CaptureLater, ByAPlayerWith32767KillsIsAFault) { EXPECT_EQ(bobCaptures("32767"), "Overflow"); }

TEST_F(CaptureLater, ByAPlayerWith32766KillsCounts) {
  EXPECT_EQ(bobCaptures("32766"), "");
  EXPECT_EQ(world.opponents[0].kills, 32767);
}

class InTheGame : public LaterFaults {
 protected:
  InTheGame() { login(); }
  /// Lets Bob glide at a time scale of 2 while the server replaces the step.
  std::string replaceStep(const std::string& across) {
    join(8, 1, "Bob");
    serverSends(wire::msgPosition, {"8", "53000", "53000"});
    runFrames(1);
    EXPECT_TRUE(world.opponents[0].steering);
    serverSends(wire::msgVelocity, {"8", across, "-1"});
    return faultOfFrames(1, 2);
  }
  /// The fault after clicking Buy with this stock of the first two items.
  std::string buyWith(const std::string& first, const std::string& second) {
    serverSends(wire::msgBuyAccepted, {"0", first, "10"});
    serverSends(wire::msgBuyAccepted, {"1", second, "10"});
    modMain::openStore();
    return faultOf([] { frmPowerups->cmdBuy[0].Click(); });
  }
  std::string openStoreWith(const std::string& funds) {
    serverSends(wire::msgFunds, {"7", funds});
    return faultOf([] { modMain::openStore(); });
  }
  /// Runs a frame with a client area of this height in pixels.
  std::string flyInAWindowOf(int height) {
    frmMain->Show();
    frmMain->clientResized(13410, static_cast<float>(height * 15));
    runFrames(1);
    EXPECT_TRUE(world.localPlayer.breaksOn) << "at rest nothing is computed";
    frmMain->canvas.MouseDown(2, 0, 0, 0);
    return faultOfFrames(1);
  }
  /// Fires a laser while the last step was one unit to the right and very slightly down.
  std::string fireAlong(const std::string& hair) {
    join(8, 1, "Bob");
    serverSends(wire::msgPosition, {"8", "49999", "0"});
    runFrames(1);
    serverSends(wire::msgPosition, {"8", "50000", hair});
    serverSends(wire::msgPowerupOn, {"8", "4"});
    return faultOfFrames(1);
  }
  /// Paints a charged segment from the view to one unit beside it and this far down.
  std::string chargeTowards(const std::string& down) {
    serverSends(wire::msgPowerupOn, {"7", "2"});
    serverSends(wire::msgPosition, {"7", "50011", down});
    serverSends(wire::msgPosition, {"7", "50010", "50000"});
    return faultOfFrames(1);
  }
};

// Twice 1.71E+38 exceeds 3.4028E+38.
TEST_F(InTheGame, StepThatOverflowsWithTheTimeScaleIsAFault) { EXPECT_EQ(replaceStep("-1.71E+38"), "Overflow"); }
TEST_F(InTheGame, AStepThatFitsIsTaken) {
  EXPECT_EQ(replaceStep("-1.7E+38"), "");
  EXPECT_EQ(world.opponents[0].position.x, 0) << "and ends at the edge";
}

TEST_F(InTheGame, StockThatOverflowsAtTheNextPurchaseIsAFault) { EXPECT_EQ(buyWith("32767", "1"), "Overflow"); }
TEST_F(InTheGame, AStockOf32767IsFull) {
  EXPECT_EQ(buyWith("32766", "1"), "");
  EXPECT_TRUE(frmPowerups->lblWinners.Caption.get().starts_with("Cannot purchase"));
}

// The label has 15 digits. The largest double, rounded to 15 digits, exceeds the range.
TEST_F(InTheGame, Q305CreditsThatRoundBeyondADoubleAreAFault) {
  EXPECT_EQ(openStoreWith("1.7976931348623157E+308"), "Overflow");
}
TEST_F(InTheGame, Q305CreditsThatRoundBelowAreShown) {
  EXPECT_EQ(openStoreWith("1.797693134862314E+308"), "");
  EXPECT_EQ(frmPowerups->lblFunds.Caption.get(), "1.79769313486231E+308");
}

TEST_F(InTheGame, Q306AFlightOnACanvasWithoutHeightIsAFault) { EXPECT_EQ(flyInAWindowOf(62), "Division by zero"); }
TEST_F(InTheGame, Q306AFlightOnACanvasOfOnePixelIsNoFault) { EXPECT_EQ(flyInAWindowOf(63), ""); }

TEST_F(InTheGame, Q302ANearlyLevelFlightWithALaserIsAFault) { EXPECT_EQ(fireAlong("2.938E-34"), "Overflow"); }
TEST_F(InTheGame, Q302ASlightlySteeperFlightDrawsTheBeam) { EXPECT_EQ(fireAlong("2.94E-34"), ""); }

// 5732 units from the canvas's left border: 3.4028E+38 is 5.936E+34 times as much.
TEST_F(InTheGame, Q303AChargedVertexFarOutsideIsAFault) { EXPECT_EQ(chargeTowards("5.94E+34"), "Overflow"); }
TEST_F(InTheGame, Q303AChargedVertexNotQuiteAsFarIsNoFault) { EXPECT_EQ(chargeTowards("5.93E+34"), ""); }

TEST_F(LaterFaults, Q072AColourWithoutASheetFaultsInTheNextFrame) {
  connect();
  serverSends(wire::msgLoginAccepted, {"6", "7", "50000", "50000"});
  EXPECT_TRUE(world.localPlayer.isConnected);
  EXPECT_EQ(faultOfFrames(1), "Subscript out of range");
}

}  // namespace
}  // namespace kelvora
