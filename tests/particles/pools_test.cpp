#include <gtest/gtest.h>

#include <cmath>

#include "base/fault.h"
#include "rendering/starsMode.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class Pools : public GameTest {};

TEST_F(Pools, FieldHas150ParticlesAroundThePlayerAndAnEmptySlot) {
  modMain::world.localPlayer.position = {30000, 70000};
  modMain::createParticleField();
  EXPECT_EQ(modMain::world.particleCount, 150);
  ASSERT_EQ(modMain::world.particles.size(), 151U);
  for (std::size_t i = 0; i < 150; ++i) {
    const clsParticle& particle = modMain::world.particles[i];
    EXPECT_EQ(particle.num_, static_cast<double>(i));
    EXPECT_EQ(particle.type, ParticleType::Background);
    EXPECT_LE(std::fabs(particle.position.x - 30000), 11445);
    EXPECT_LE(std::fabs(particle.position.y - 70000), 9120);
    EXPECT_GE(particle.depth, 2);
    EXPECT_LE(particle.depth, 16);
    EXPECT_LE(std::fabs(particle.velocity.x), 15);
    EXPECT_GE(std::fabs(particle.velocity.x), 1);
  }
  EXPECT_EQ(modMain::world.particles[150].maxSpeed, 0) << "never initialised";
}

TEST_F(Pools, NewFieldReplacesTheOld) {
  modMain::createParticleField();
  modMain::world.particles[3].type = ParticleType::Network;
  modMain::world.particles[3].positionQueue = {{1, 1}};
  modMain::createParticleField();
  EXPECT_EQ(modMain::world.particles[3].type, ParticleType::Background);
  EXPECT_TRUE(modMain::world.particles[3].positionQueue.empty());
}

TEST_F(Pools, AnExplosionHasOneParticleForEachCount) {
  modMain::addExplosion({100, 200}, 2);
  modMain::addExplosion({300, 400}, 1);
  ASSERT_EQ(modMain::world.explosionCount, 3);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(modMain::world.explosionParticles[i].num_, static_cast<double>(i));
    EXPECT_EQ(modMain::world.explosionParticles[i].type, ParticleType::Explosion);
  }
  EXPECT_EQ(modMain::world.explosionParticles[1].position, (Vector{100, 200}));
  EXPECT_EQ(modMain::world.explosionParticles[2].position, (Vector{300, 400}));
  modMain::addExplosion({0, 0}, 0);
  EXPECT_EQ(modMain::world.explosionCount, 3);
}

TEST_F(Pools, ARemovalKeepsTheOrderAndRenumbers) {
  for (float x = 0; x < 4; ++x) modMain::addExplosion({x, 0}, 1);
  modMain::removeExplosionParticle(1);
  ASSERT_EQ(modMain::world.explosionCount, 3);
  const float expected[] = {0, 2, 3};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(modMain::world.explosionParticles[i].position.x, expected[i]);
    EXPECT_EQ(modMain::world.explosionParticles[i].num_, static_cast<double>(i));
  }
  modMain::removeExplosionParticle(3);
  modMain::removeExplosionParticle(-1);
  EXPECT_EQ(modMain::world.explosionCount, 3) << "no particle has that number";
}

TEST_F(Pools, StarsModeIsTheMenusCheckMark) {
  EXPECT_TRUE(modMain::isStarsMode());
  frmMain->mnuQuarkStars.Checked = false;
  EXPECT_FALSE(modMain::isStarsMode());
}

TEST_F(Pools, FieldStandsStillInStarsModeAndDriftsInQuarksMode) {
  login();
  modMain::world.localPlayer.velocity = {};
  std::vector<Vector> before;
  for (const clsParticle& particle : modMain::world.particles) before.push_back(particle.position);
  modMain::runFrame();
  for (std::size_t i = 0; i < 150; ++i) EXPECT_EQ(modMain::world.particles[i].position, before[i]);
  frmMain->mnuQuarkStars.Checked = false;
  modMain::runFrame();
  for (std::size_t i = 0; i < 150; ++i) {
    EXPECT_EQ(modMain::world.particles[i].position == before[i], modMain::world.particles[i].depth == 15) << i;
  }
}

TEST_F(Pools, Q120SlotsAreNeverReused) {
  modMain::receiveParticleNew("a", 1, 10, 20, 1, 2);
  modMain::receiveParticleRemove("a");
  modMain::receiveParticleNew("b", 2, 30, 40, 0, 0);
  ASSERT_EQ(modMain::world.netParticleCount, 2);
  EXPECT_EQ(modMain::world.netParticles[0].id, "a");
  EXPECT_EQ(modMain::world.netParticles[1].id, "b");
  EXPECT_EQ(modMain::world.netParticles[0].num_, 1) << "the count after growing";
  EXPECT_EQ(modMain::world.netParticles[1].num_, 2);
  EXPECT_EQ(modMain::allocNetParticle(), 2);
  EXPECT_EQ(modMain::world.netParticleCount, 3);
}

TEST_F(Pools, Q263ServerParticlesAreNumberedFromOneAndTheOthersFromZero) {
  for (const char* id : {"a", "b"}) modMain::receiveParticleNew(id, 1, 10, 20, 0, 0);
  modMain::addExplosion({10, 20}, 2);
  modMain::createParticleField();
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(modMain::world.netParticles[i].num_, static_cast<double>(i) + 1);
    EXPECT_EQ(modMain::world.explosionParticles[i].num_, static_cast<double>(i));
    EXPECT_EQ(modMain::world.particles[i].num_, static_cast<double>(i));
  }
}

TEST_F(Pools, TheNumberOfServerParticlesIsBoundedByItsType) {
  modMain::world.netParticleCount = 32767;
  EXPECT_THROW(modMain::allocNetParticle(), RuntimeFault);
}

TEST_F(Pools, PositionGoesToTheFirstParticleWithItsId) {
  modMain::receiveParticleNew("a", 1, 10, 20, 0, 0);
  modMain::receiveParticleNew("b", 1, 10, 20, 0, 0);
  modMain::receiveParticleNew("b", 1, 10, 20, 0, 0);
  modMain::receiveParticlePosition("b", 50, 60);
  modMain::receiveParticlePosition("c", 70, 80);
  EXPECT_EQ(modMain::world.netParticles[0].position, (Vector{10, 20}));
  EXPECT_EQ(modMain::world.netParticles[1].position, (Vector{50, 60}));
  EXPECT_EQ(modMain::world.netParticles[2].position, (Vector{10, 20}));
}

TEST_F(Pools, Q121ARemovedParticleFollowsItsQueueToTheEnd) {
  modMain::world.localPlayer.position = {50000, 50000};
  modMain::receiveParticleNew("a", 1, 50000, 50000, 0, 0);
  modMain::receiveParticlePosition("a", 50000, 50000);
  modMain::receiveParticleRemove("a");
  EXPECT_FALSE(modMain::world.netParticles[0].spawned);
  modMain::receiveParticlePosition("a", 50100, 50100);
  modMain::world.netParticles[0].moveNormal();
  EXPECT_EQ(modMain::world.netParticles[0].position, (Vector{50100, 50100}));
}

TEST_F(Pools, TheServersMessagesReachThePool) {
  login();
  serverSends(wire::msgParticleAdd, {"q1", "5", "50000", "50010", "0", "0"});
  ASSERT_EQ(modMain::world.netParticleCount, 1);
  EXPECT_EQ(modMain::world.netParticles[0].kind, 5);
  serverSends(wire::msgParticleMove, {"q1", "90000", "90"});
  EXPECT_EQ(modMain::world.netParticles[0].position, (Vector{90000, 90})) << "the first one snaps, however far";
  EXPECT_TRUE(modMain::world.netParticles[0].positionQueue.empty());
  serverSends(wire::msgParticleRemove, {"q1"});
  EXPECT_FALSE(modMain::world.netParticles[0].spawned);
}

TEST_F(Pools, TheServersParticlesOutliveTheConnection) {
  login();
  serverSends(wire::msgParticleAdd, {"q1", "5", "50000", "50010", "0", "0"});
  netMan::disconnectFromServer();
  EXPECT_EQ(modMain::world.netParticleCount, 1);
  EXPECT_EQ(modMain::world.netParticles[0].id, "q1");
}

TEST_F(Pools, Q307AFieldTurnedIntoBallsDrawsNewVelocitiesAndIsNotWrapped) {
  frmMain->mnuQuarkStars.Checked = false;
  modMain::world.localPlayer.position = {50000, 50000};
  modMain::createParticleField();
  clsParticle& particle = modMain::world.particles[0];
  const Vector place = particle.position;
  machine.scriptedDraws = {0.5F, 0.9F, 0.2F, 0.1F};  // Int(.5 * 15 + 1), to the right; Int(.2 * 15 + 1), up
  particle.init(redPlayer, ParticleType::Network, 1, 2);
  EXPECT_EQ(particle.velocity, (Vector{8, -4}));
  EXPECT_EQ(particle.position, place);
  particle.depth = 0;
  particle.position = {0, 0};
  particle.wrap();
  particle.move();
  EXPECT_EQ(particle.position, particle.velocity);
}

}  // namespace
}  // namespace kelvora
