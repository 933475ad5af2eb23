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
  ball.type = static_cast<std::uint8_t>(ParticleType::Network);
  ball.position = {50000 - 5722 + 3015, 50000 - 4560 + 3015};
  ball.paintSelf();
  // 3015 - 315 = 2700 is where pixel 180 begins; 3015 - 315.9 = 2699.1 would be in pixel 179.
  EXPECT_EQ(pixelAt(canvas(), 179, 190), RGB(255, 255, 255));
  EXPECT_EQ(pixelAt(canvas(), 190, 179), RGB(255, 255, 255));
  EXPECT_EQ(pixelAt(canvas(), 180, 180), spriteOnWhite(0, ballsGreen, 0));
}

TEST_F(ParticleSheet, TheParticleWhoseTimeIsUpLeavesAndNoOther) {
  for (float x = 0; x < 3; ++x) modMain::addExplosion({50000 + x, 50000}, 1);
  modMain::explosionParticles[1].age = 10;
  modMain::explosionParticles[1].paintSelf();
  ASSERT_EQ(modMain::explosionCount, 2);
  EXPECT_EQ(modMain::explosionParticles[0].position.x, 50000);
  EXPECT_EQ(modMain::explosionParticles[1].position.x, 50002);
}

}  // namespace
}  // namespace kelvora
