#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::getPlayerIndex;
using modMain::getPlayerName;
using modMain::getServerNode;

class Players : public GameTest {
 protected:
  void addOpponent(std::int16_t node, const std::string& name, bool isConnected = true) {
    clsPlayer& opponent = modMain::world.opponents.emplace_back();
    opponent.playerIndex = modMain::world.opponentCount++;
    opponent.serverNode = node;
    opponent.name = name;
    opponent.isConnected = isConnected;
  }
};

TEST_F(Players, TheLocalPlayersNodeIsMinusOne) {
  modMain::world.localPlayer.serverNode = 7;
  EXPECT_EQ(getPlayerIndex(7), -1);
}

TEST_F(Players, Q222BeforeTheFirstLoginNodeZeroCountsAsTheLocalPlayer) { EXPECT_EQ(getPlayerIndex(0), -1); }

TEST_F(Players, IndexIsTheFirstConnectedSlotWithTheNode) {
  modMain::world.localPlayer.serverNode = 7;
  addOpponent(3, "gone", false);
  addOpponent(4, "other");
  addOpponent(3, "back");
  addOpponent(3, "twin");
  EXPECT_EQ(getPlayerIndex(3), 2);
  EXPECT_EQ(getPlayerIndex(4), 1);
}

TEST_F(Players, Q030AnUnknownNodeYieldsZero) {
  modMain::world.localPlayer.serverNode = 7;
  EXPECT_EQ(getPlayerIndex(99), 0) << "with no opponent at all";
  addOpponent(3, "Bob");
  addOpponent(4, "Cat");
  EXPECT_EQ(getPlayerIndex(99), 0);
}

TEST_F(Players, MessageForAnUnknownNodeIsIgnoredWithoutOpponents) {
  login(0, 7);
  serverSends(wire::msgPowerupOn, {"99", "0"});
  EXPECT_FALSE(modMain::world.localPlayer.powerups[shieldSlot].active);
  EXPECT_TRUE(modMain::world.opponents.empty());
}

TEST_F(Players, FindsTheServerNodeOfAnIndex) {
  modMain::world.localPlayer.serverNode = 7;
  addOpponent(3, "Bob");
  addOpponent(4, "Cat");
  EXPECT_EQ(getServerNode(-1), 7);
  EXPECT_EQ(getServerNode(0), 3);
  EXPECT_EQ(getServerNode(1), 4);
  EXPECT_EQ(getServerNode(2), 0);
  EXPECT_EQ(getServerNode(-2), 0);
}

TEST_F(Players, Q031ADepartedPlayerYieldsNodeZero) {
  addOpponent(3, "Bob", false);
  EXPECT_EQ(getServerNode(0), 0);
}

TEST_F(Players, FindsTheNameOfAnIndex) {
  modMain::world.localPlayer.name = "Ann";
  addOpponent(3, "Bob");
  addOpponent(4, "Cat", false);
  EXPECT_EQ(getPlayerName(-1), "Ann");
  EXPECT_EQ(getPlayerName(0), "Bob");
  EXPECT_EQ(getPlayerName(1), "Cat") << "connected or not";
  EXPECT_EQ(getPlayerName(2), "");
  EXPECT_EQ(getPlayerName(500), "");
}

TEST_F(Players, APlayerOutsideTheSlotsIsAFault) {
  addOpponent(3, "Bob");
  EXPECT_EQ(&modMain::playerAt(-1), &modMain::world.localPlayer);
  EXPECT_EQ(&modMain::playerAt(0), &modMain::world.opponents[0]);
  EXPECT_THROW(modMain::playerAt(1), RuntimeFault);
  EXPECT_THROW(modMain::playerAt(-2), RuntimeFault);
}

TEST_F(Players, OpponentsKeepTheirSlotsThroughAReconnection) {
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

}  // namespace
}  // namespace kelvora
