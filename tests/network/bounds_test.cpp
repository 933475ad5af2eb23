// Everything that a hostile server can make the client keep is bounded, and so is its cost per frame.

#include <gtest/gtest.h>

#include "base/fault.h"
#include "network/messageQueue.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::world;

class Bounds : public GameTest {
 protected:
  Bounds() { login(); }
  static std::string frame(std::int16_t id, const std::vector<std::string>& fields) { return frameOf(id, fields); }
  static std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) all += text;
    return all;
  }
};

TEST_F(Bounds, TailHasAtMostAQuarterOfAMillionVertices) {
  world.localPlayer.powerups[extendedTailSlot].active = true;
  const std::string echo = frame(wire::msgPosition, {"7", "1", "1"});
  for (int i = 0; i < 6; ++i) serverSends(repeated(echo, 50'000));
  EXPECT_EQ(world.localPlayer.tailCount(), 250'000);
  EXPECT_EQ(clsTail::count(), 250'000U);
  world.localPlayer.killTail(0);
  serverSends(echo);
  EXPECT_EQ(world.localPlayer.tailCount(), 250'000) << "what has gone makes room";
}

TEST_F(Bounds, TheVerticesOfAllPlayersCountTogether) {
  const std::size_t before = clsTail::count();
  {
    clsPlayer player;
    player.alive = true;
    player.addTail({1, 1});
    const clsPlayer copy = player;
    EXPECT_EQ(clsTail::count(), before + 2);
  }
  EXPECT_EQ(clsTail::count(), before);
}

TEST_F(Bounds, DepartedTailsAreFreedBeyondManyVertices) {
  for (std::int16_t node = 8; node <= 10; ++node) {
    clsPlayer& opponent = modMain::world.opponents.at(static_cast<std::size_t>(join(node, 1, "Bob")));
    for (int i = 0; i < 1'000; ++i) opponent.addTail({1, 1});
  }
  for (int i = 0; i < 122'000; ++i) world.localPlayer.addTail({1, 1});
  serverSends(wire::msgPlayerLeft, {"8"});
  EXPECT_EQ(modMain::world.opponents[0].tailCount(), 1'000) << "125,000 are exactly half of the maximum";
  world.localPlayer.addTail({1, 1});
  serverSends(wire::msgPlayerLeft, {"9"});
  EXPECT_EQ(modMain::world.opponents[1].tailCount(), 0);
  world.localPlayer.addTail({1, 1});
  EXPECT_EQ(clsTail::count(), 124'002U);
  for (int i = 0; i < 1'000; ++i) world.localPlayer.addTail({1, 1});
  netMan::disconnectFromServer();
  EXPECT_EQ(modMain::world.opponents[0].tailCount(), 0) << "when we leave, everybody has left";
  EXPECT_EQ(modMain::world.opponents[2].tailCount(), 1'000) << "freeing the first one's vertices is enough";
  EXPECT_EQ(world.localPlayer.tailCount(), 123'002) << "our own tail stays";
}

TEST_F(Bounds, AtMostAMillionPositionsAreQueued) {
  join(8, 1, "Bob");
  serverSends(wire::msgParticleAdd, {"p", "0", "1", "1", "0", "0"});
  serverSends(wire::msgParticleMove, {"p", "2", "2"});
  const std::string positions = repeated(frame(wire::msgPosition, {"8", "50001", "50001"}), 100'000);
  for (int i = 0; i < 11; ++i) serverSends(positions);
  clsPlayer& bob = modMain::world.opponents[0];
  const double particles = static_cast<double>(modMain::world.netParticles[0].positionQueue.size());
  EXPECT_EQ(bob.positionQueueCount() + particles, 1'000'000);
  serverSends(wire::msgParticleMove, {"p", "3", "3"});
  EXPECT_EQ(static_cast<double>(modMain::world.netParticles[0].positionQueue.size()), particles);
  bob.moveAsOpponent();
  EXPECT_EQ(bob.positionQueueCount() + particles, 999'999) << "one was near, and is reached";
  serverSends(positions);
  EXPECT_EQ(bob.positionQueueCount() + particles, 1'000'000) << "what was reached makes room";
}

TEST_F(Bounds, AtMostAThousandVerticesHaveAPendingCapture) {
  join(8, 1, "Bob");
  for (int i = 0; i < 1'001; ++i) world.localPlayer.addTail({static_cast<float>(i), 0});
  for (int i = 0; i < 1'000; ++i) serverSends(wire::msgTailCapture, {"7", "8", std::to_string(i), "0"});
  EXPECT_EQ(modMain::world.killerTails.size(), 1'000U);
  EXPECT_EQ(world.localPlayer.kills, 0);
  serverSends(wire::msgTailCapture, {"7", "8", "1000", "0"});
  EXPECT_EQ(modMain::world.killerTails.size(), 1'000U);
  EXPECT_EQ(world.localPlayer.kills, 1) << "the capture beyond the limit lands at once";
}

TEST_F(Bounds, AVertexHasAThousandVictims) {
  join(8, 1, "Bob");
  world.localPlayer.addTail({1, 2});
  const std::string capture = frame(wire::msgTailCapture, {"7", "8", "1", "2"});
  serverSends(repeated(capture, 1'000));
  EXPECT_EQ(modMain::world.killerTails.at(0).victims.size(), 1'000U);
  EXPECT_EQ(world.localPlayer.kills, 0);
  serverSends(capture);
  EXPECT_EQ(modMain::world.killerTails.at(0).victims.size(), 1'000U);
  EXPECT_EQ(world.localPlayer.kills, 1);
}

TEST_F(Bounds, AtMostAThousandExplosionParticlesExist) {
  modMain::addExplosion({1, 1}, 600);
  modMain::addExplosion({1, 1}, 600);
  EXPECT_EQ(modMain::world.explosionCount, 1'000);
  EXPECT_EQ(modMain::world.explosionParticles.size(), 1'000U);
}

TEST_F(Bounds, CapturesPerLifeAreCountedInSixteenBits) {
  world.localPlayer.captures.assign(32'767, yellowPlayer);
  EXPECT_EQ(world.localPlayer.captureCount(), 32'767);
  EXPECT_THROW(world.localPlayer.receiveCapture(yellowPlayer), RuntimeFault);
  EXPECT_EQ(world.localPlayer.captures.size(), 32'767U);
}

TEST_F(Bounds, StoredNamesAreLimitedToSixteenMebibytes) {
  const std::string name(1'000'000, 'x');
  for (int i = 0; i < 20; ++i) {
    serverSends(wire::msgPlayerJoined, {std::to_string(i + 10), "1", name, "1", "1", "1", "0"});
  }
  EXPECT_EQ(modMain::world.opponentCount, 16);
  serverSends(wire::msgParticleAdd, {name, "0", "1", "1", "0", "0"});
  EXPECT_EQ(modMain::world.netParticleCount, 0);
  serverSends(wire::msgPlayerJoined, {"99", "1", "Bob", "1", "1", "1", "0"});
  EXPECT_EQ(modMain::world.opponentCount, 17) << "the usual ones still fit";
}

TEST_F(Bounds, AtMostSixteenBoxesNest) {
  int standing = 0;
  int most = 0;
  machine.onMessageBox = [&](const std::string&) {
    most = std::max(most, ++standing);
    if (machine.messageBoxes.size() < 100) serverSends(wire::msgSpawnDenied, {""});
    --standing;
  };
  serverSends(wire::msgSpawnDenied, {""});
  EXPECT_EQ(most, 16);
  EXPECT_EQ(machine.messageBoxes.size(), 16U);
  serverSends(wire::msgServerText, {"goes on"});
  EXPECT_EQ(modMain::world.chatLines[0].text, "goes on");
}

}  // namespace
}  // namespace kelvora
