#include <gtest/gtest.h>

#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

class ParticleSheet : public PaintTest {
 protected:
  ParticleSheet() {
    canvas().BackColor = RGB(255, 255, 255);
    canvas().Cls();
    placeLocal();
  }
};

TEST_F(ParticleSheet, TheCellsSizeIsRoundedDown) {
  // A cell of 315.9 by 315.9 counts as 315.
  frmGfx->imgBalls.Width = 11 * 315.9F;
  frmGfx->imgBalls.Height = 315.9F;
  clsParticle ball;
  ball.type = ParticleType::Network;
  ball.position = {50000 - 5722 + 3023, 50000 - 4560 + 3023};
  ball.paintSelf();
  // 3023 - 315 = 2708 is nearest to pixel 181. 3023 - 315.9 = 2707.1 would be nearest to 180.
  EXPECT_EQ(pixelAt(canvas(), 180, 190), RGB(255, 255, 255));
  EXPECT_EQ(pixelAt(canvas(), 190, 180), RGB(255, 255, 255));
  EXPECT_EQ(pixelAt(canvas(), 181, 181), spriteOnWhite(0, ballsGreen, 0));
}

TEST_F(ParticleSheet, OnlyTheExpiredParticleIsRemoved) {
  for (float x = 0; x < 3; ++x) modMain::addExplosion({50000 + x, 50000}, 1);
  modMain::world.explosionParticles[1].age = 10;
  modMain::world.explosionParticles[1].paintSelf();
  ASSERT_EQ(modMain::world.explosionCount, 2);
  EXPECT_EQ(modMain::world.explosionParticles[0].position.x, 50000);
  EXPECT_EQ(modMain::world.explosionParticles[1].position.x, 50002);
}

}  // namespace
}  // namespace kelvora
