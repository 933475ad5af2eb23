#include <gtest/gtest.h>

#include "rendering/starsMode.h"
#include "tests/support/gameTest.h"

// The size of the field around the player.
namespace kelvora {
namespace {

class FieldSize : public GameTest {
 protected:
  FieldSize() {
    modMain::world.localPlayer.position = {50000, 50000};
    particle.init(redPlayer, ParticleType::Background, 0, 0);  // on a canvas of 11445 by 9120
  }
  /// Makes the next scatter move nothing.
  void scatterNowhere() { machine.scriptedDraws.assign({0, 0.9F, 0, 0.9F, 0}); }
  clsParticle particle;
};

TEST_F(FieldSize, Q262AWiderWindowKeepsTheOldField) {
  frmMain->canvas.Width = 20000;
  frmMain->canvas.Height = 16000;
  scatterNowhere();
  particle.position = {50000 + 11446, 50000};
  particle.wrap();
  EXPECT_EQ(particle.position, (Vector{50000 - 11145, 50000}));
  scatterNowhere();
  particle.position = {50000, 50000 - 9121};
  particle.wrap();
  EXPECT_EQ(particle.position, (Vector{50000, 50000 + 8820}));
}

TEST_F(FieldSize, TheNextFieldTakesTheNewSize) {
  frmMain->canvas.Width = 20000;
  frmMain->canvas.Height = 16000;
  modMain::createParticleField();
  for (std::size_t i = 0; i < 150; ++i) {
    EXPECT_EQ(modMain::world.particles[i].fieldWidth, 20000);
    EXPECT_EQ(modMain::world.particles[i].fieldHeight, 16000);
  }
}

TEST_F(FieldSize, FieldStillWrapsAroundThePlayerInStarsMode) {
  login();
  ASSERT_TRUE(modMain::isStarsMode());
  modMain::world.particleCount = 1;
  modMain::world.particles.assign(1, particle);
  modMain::world.particles[0].position = {50000 - 11446, 50000};
  modMain::world.particles[0].velocity = {15, 15};
  modMain::world.particles[0].depth = 1;
  scatterNowhere();
  modMain::runFrame();
  EXPECT_EQ(modMain::world.particles[0].position, (Vector{50000 + 11145, 50000}));
}

}  // namespace
}  // namespace kelvora
