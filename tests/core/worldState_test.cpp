#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::getDistance;
using modMain::getPlayerIndex;
using modMain::getPlayerName;
using modMain::getServerNode;
using modMain::isOnScreen;

class WorldState : public GameTest {
 protected:
  void addOpponent(std::int16_t node, const std::string& name, bool isConnected = true) {
    clsPlayer& opponent = modMain::world.opponents.emplace_back();
    opponent.playerIndex = modMain::world.opponentCount++;
    opponent.serverNode = node;
    opponent.name = name;
    opponent.isConnected = isConnected;
  }
};

TEST_F(WorldState, TheLocalPlayersNodeIsMinusOne) {
  modMain::world.localPlayer.serverNode = 7;
  EXPECT_EQ(getPlayerIndex(7), -1);
}

TEST_F(WorldState, Q222BeforeTheFirstLoginNodeZeroCountsAsTheLocalPlayer) { EXPECT_EQ(getPlayerIndex(0), -1); }

TEST_F(WorldState, AnIndexIsTheFirstConnectedSlotOfTheNode) {
  modMain::world.localPlayer.serverNode = 7;
  addOpponent(3, "gone", false);
  addOpponent(4, "other");
  addOpponent(3, "back");
  addOpponent(3, "twin");
  EXPECT_EQ(getPlayerIndex(3), 2);
  EXPECT_EQ(getPlayerIndex(4), 1);
}

TEST_F(WorldState, Q030AnUnknownNodeYieldsZero) {
  modMain::world.localPlayer.serverNode = 7;
  EXPECT_EQ(getPlayerIndex(99), 0) << "with no opponent at all";
  addOpponent(3, "Bob");
  addOpponent(4, "Cat");
  EXPECT_EQ(getPlayerIndex(99), 0);
}

TEST_F(WorldState, AMessageForNobodyIsIgnoredWhileThereAreNoOpponents) {
  login(0, 7);
  serverSends(wire::msgPowerupOn, {"99", "0"});
  EXPECT_FALSE(modMain::world.localPlayer.powerups[shieldSlot].active);
  EXPECT_TRUE(modMain::world.opponents.empty());
}

TEST_F(WorldState, TheServerNodeOfAnIndex) {
  modMain::world.localPlayer.serverNode = 7;
  addOpponent(3, "Bob");
  addOpponent(4, "Cat");
  EXPECT_EQ(getServerNode(-1), 7);
  EXPECT_EQ(getServerNode(0), 3);
  EXPECT_EQ(getServerNode(1), 4);
  EXPECT_EQ(getServerNode(2), 0);
  EXPECT_EQ(getServerNode(-2), 0);
}

TEST_F(WorldState, Q031ADepartedPlayerYieldsNodeZero) {
  addOpponent(3, "Bob", false);
  EXPECT_EQ(getServerNode(0), 0);
}

TEST_F(WorldState, TheNameOfAnIndex) {
  modMain::world.localPlayer.name = "Ann";
  addOpponent(3, "Bob");
  addOpponent(4, "Cat", false);
  EXPECT_EQ(getPlayerName(-1), "Ann");
  EXPECT_EQ(getPlayerName(0), "Bob");
  EXPECT_EQ(getPlayerName(1), "Cat") << "connected or not";
  EXPECT_EQ(getPlayerName(2), "");
  EXPECT_EQ(getPlayerName(500), "");
}

TEST_F(WorldState, APlayerOutsideTheSlotsIsAFault) {
  addOpponent(3, "Bob");
  EXPECT_EQ(&modMain::playerAt(-1), &modMain::world.localPlayer);
  EXPECT_EQ(&modMain::playerAt(0), &modMain::world.opponents[0]);
  EXPECT_THROW(modMain::playerAt(1), RuntimeFault);
  EXPECT_THROW(modMain::playerAt(-2), RuntimeFault);
}

TEST_F(WorldState, Distance) {
  EXPECT_EQ(getDistance({0, 0}, {3, 4}), 5.0F);
  EXPECT_EQ(getDistance({10, -4}, {-2, 1}), 13.0F);
  EXPECT_EQ(getDistance({7, 7}, {7, 7}), 0.0F);
  EXPECT_EQ(getDistance({0, 0}, {100'000, 100'000}), 141'421.36F);
}

TEST_F(WorldState, ADistanceIsASingleOfSquaresInDouble) {
  // Squares in single precision would make it 24582.998.
  EXPECT_EQ(getDistance({0, 0}, {4'433, 24'180}), 24'583.0F);
  // 499.9999957, nearer to 500 than to the single below it.
  EXPECT_EQ(getDistance({0, 0}, {139.99998F, 480}), 500.0F);
  // 2^24 + 1 is no single: the difference is narrowed to 2^24, and 16777216.9998 to an even number. With the wide
  // difference it would be 16777217.9998, and so 16777218.
  EXPECT_EQ(getDistance({16'777'216, 5'792}, {-1, 0}), 16'777'216.0F);
  EXPECT_EQ(getDistance({0, 16'777'216}, {5'792, -1}), 16'777'216.0F);
}

TEST_F(WorldState, TheScreenEndsAtTheCanvasEdgeAndTheEdgeBelongsToIt) {
  // The local player is at the canvas's centre: at the design size (5722, 4560) of 11445 by 9120.
  modMain::world.localPlayer.position = {50'000, 50'000};
  const float left = 50'000 - 5'722;
  const float top = 50'000 - 4'560;
  const float right = left + 11'445;
  const float bottom = top + 9'120;
  EXPECT_TRUE(isOnScreen({left, 50'000}));
  EXPECT_TRUE(isOnScreen({right, 50'000}));
  EXPECT_TRUE(isOnScreen({50'000, top}));
  EXPECT_TRUE(isOnScreen({50'000, bottom}));
  EXPECT_TRUE(isOnScreen({left, top}));
  EXPECT_TRUE(isOnScreen({right, bottom}));
  EXPECT_FALSE(isOnScreen({left - 1, 50'000}));
  EXPECT_FALSE(isOnScreen({right + 1, 50'000}));
  EXPECT_FALSE(isOnScreen({50'000, top - 1}));
  EXPECT_FALSE(isOnScreen({50'000, bottom + 1}));
}

TEST_F(WorldState, ACentreMessageStartsItsAgeAnew) {
  modMain::world.centreMessageAge = 200;
  modMain::showCentreMessage("Hello");
  EXPECT_EQ(modMain::world.centreMessage, "Hello");
  EXPECT_EQ(modMain::world.centreMessageAge, 0);
}

TEST_F(WorldState, Q032FourteenTipsAreBlank) {
  modMain::showNextTip();
  EXPECT_EQ(modMain::world.centreMessage, "Right-Click to release or engage breaks");
  for (int i = 1; i < 6; ++i) {
    modMain::showNextTip();
    EXPECT_NE(modMain::world.centreMessage, "") << i;
  }
  for (int i = 6; i < 20; ++i) {
    modMain::world.centreMessageAge = 99;
    modMain::showCentreMessage("something else");
    modMain::showNextTip();
    EXPECT_EQ(modMain::world.centreMessage, "") << i;
  }
  EXPECT_EQ(modMain::world.nextTip, 0);
  modMain::showNextTip();
  EXPECT_EQ(modMain::world.centreMessage, "Right-Click to release or engage breaks");
  EXPECT_EQ(modMain::world.nextTip, 1);
}

TEST_F(WorldState, TheTipsGoOnWhereTheyWereAfterAReconnection) {
  modMain::showNextTip();
  modMain::showNextTip();
  connect();
  netMan::disconnectFromServer();
  connect();
  EXPECT_EQ(modMain::world.nextTip, 2);
}

TEST_F(WorldState, OpponentsKeepTheirSlotsOverAReconnection) {
  login();
  join(8, 1, "Bob");
  join(9, 2, "Cat");
  netMan::disconnectFromServer();
  EXPECT_FALSE(modMain::world.localPlayer.isConnected);
  login();
  EXPECT_EQ(modMain::world.opponentCount, 2);
  EXPECT_FALSE(modMain::world.opponents[0].isConnected);
  EXPECT_FALSE(modMain::world.opponents[1].isConnected);
  modMain::world.opponents[0].powerups[turboSlot] = {0, 5, true};
  modMain::runFrame();
  EXPECT_EQ(modMain::world.opponents[0].powerups[turboSlot].timeLeft, 5) << "the loop skips the old slots";
  EXPECT_EQ(join(8, 1, "Bob"), 2);
}

TEST_F(WorldState, ANewPlayerIsAllZero) {
  const clsPlayer player;
  EXPECT_FALSE(player.isConnected);
  EXPECT_FALSE(player.alive);
  EXPECT_FALSE(player.breaksOn);
  EXPECT_FALSE(player.awaitingFirstPosition);
  EXPECT_EQ(player.serverNode, 0);
  EXPECT_EQ(player.playerIndex, 0);
  EXPECT_EQ(player.colour, 0);
  EXPECT_EQ(player.name, "");
  EXPECT_EQ(player.position, (Vector{0, 0}));
  EXPECT_EQ(player.speed, 0);
  EXPECT_EQ(player.positionReportInterval, 0);
  EXPECT_EQ(player.funds(), 0);
  EXPECT_EQ(player.powerSlotLimit, 0);
  EXPECT_EQ(player.tailCount(), 0);
  EXPECT_EQ(player.totalPowerups(), 0);
}

TEST_F(WorldState, Q048KillerAndIsLongOfATailChangeNothing) {
  clsTail tail;
  tail.initTail(3, -1, {10, 20});
  const std::string id = tail.tailID();
  tail.killer(true);
  tail.isLong(true);
  EXPECT_FALSE(tail.looped());
  EXPECT_FALSE(tail.isCharged());
  EXPECT_EQ(tail.num(), 3);
  EXPECT_EQ(tail.getAge(), 0);
  EXPECT_EQ(tail.tailID(), id);
  EXPECT_EQ(tail.getPosition(), (Vector{10, 20}));
}

TEST_F(WorldState, AccessorsReadWhatIsStored) {
  modMain::setMousePos(12, 34);
  EXPECT_EQ(modMain::getMousePos(), (Vector{12, 34}));
  modMain::world.steerAngle = 45;
  modMain::world.steerQuadrant = 3;
  EXPECT_EQ(modMain::getSteerAngle(), 45);
  EXPECT_EQ(modMain::getSteerQuadrant(), 3);
  modMain::world.localPlayer.position = {1, 2};
  EXPECT_EQ(modMain::getLocalPosition(), (Vector{1, 2}));
  EXPECT_EQ(modMain::world.localPlayer.getPosition(), (Vector{1, 2}));
}

TEST_F(WorldState, ClearingPutsEverythingBack) {
  addOpponent(3, "Bob");
  modMain::world.localPlayer.name = "Ann";
  modMain::world.nextTip = 4;
  modMain::world.spareParticleCount = 1;
  modMain::world.spareParticles.resize(1);
  modMain::world.frameTime = 17;
  modMain::world.chatLines[0].text = "line";
  modMain::world = {};
  EXPECT_EQ(modMain::world.opponentCount, 0);
  EXPECT_TRUE(modMain::world.opponents.empty());
  EXPECT_EQ(modMain::world.localPlayer.name, "");
  EXPECT_EQ(modMain::world.nextTip, 0);
  EXPECT_EQ(modMain::world.spareParticleCount, 0);
  EXPECT_TRUE(modMain::world.spareParticles.empty());
  EXPECT_EQ(modMain::world.frameTime, 0);
  EXPECT_EQ(modMain::world.chatLines[0].text, "");
  EXPECT_EQ(modMain::world.colourNames[0], "");
}

}  // namespace
}  // namespace kelvora
