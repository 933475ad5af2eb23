#include <gtest/gtest.h>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class World : public GameTest {};

TEST_F(World, ANewPlayerIsAllZero) {
  const clsPlayer player;
  EXPECT_FALSE(player.isConnected);
  EXPECT_FALSE(player.alive);
  EXPECT_FALSE(player.breaksOn);
  EXPECT_FALSE(player.awaitingFirstPosition);
  EXPECT_EQ(player.serverNode, 0);
  EXPECT_EQ(player.playerIndex, 0);
  EXPECT_EQ(player.colour, redPlayer);
  EXPECT_EQ(player.name, "");
  EXPECT_EQ(player.position, (Vector{0, 0}));
  EXPECT_EQ(player.speed, 0);
  EXPECT_EQ(player.positionReportInterval, 0);
  EXPECT_EQ(player.funds(), 0);
  EXPECT_EQ(player.powerSlotLimit, 0);
  EXPECT_EQ(player.tailCount(), 0);
  EXPECT_EQ(player.totalPowerups(), 0);
}

TEST_F(World, Q048KillerAndIsLongOfATailChangeNothing) {
  const double base = 0;
  clsTail tail(base);
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

TEST_F(World, AccessorsReadWhatIsStored) {
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

TEST_F(World, ClearingResetsEverything) {
  modMain::world.opponents.emplace_back();
  modMain::world.opponentCount = 1;
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
