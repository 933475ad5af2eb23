#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

class ParticlePainting : public PaintTest {
 protected:
  ParticlePainting() {
    canvas().BackColor = RGB(0, 0, 0);
    canvas().Cls();
    placeLocal();
    modMain::world.explosionParticles.reserve(16);
  }
  /// A background particle at a given position on the canvas before the shift.
  clsParticle background(std::int16_t depth, double x, double y) {
    clsParticle particle;
    particle.type = ParticleType::Background;
    particle.depth = depth;
    particle.position = {static_cast<float>(50000 - 5722 + x), static_cast<float>(50000 - 4560 + y)};
    return particle;
  }
  clsParticle ball(ParticleType type, double x, double y) {
    clsParticle particle = background(0, x, y);
    particle.type = type;
    particle.kind = 7;
    return particle;
  }
  bool isEmpty() { return countPixels(canvas(), {}) == canvas().pixelWidth() * canvas().pixelHeight(); }
};

TEST_F(ParticlePainting, AStarsGreyFollowsItsDepth) {
  const struct {
    std::int16_t depth;
    int grey;
  } table[] = {{1, 190}, {2, 180}, {10, 100}, {15, 50}, {16, 40}};
  for (const auto& [depth, grey] : table) {
    canvas().Cls();
    background(depth, 5722.5, 4560).paintSelf();
    EXPECT_EQ(pixelAt(canvas(), 5722.5, 4560.0), RGB(grey, grey, grey)) << depth;
  }
}

TEST_F(ParticlePainting, AQuarksColourIsDimmedByItsDepthAndNeverBelowZero) {
  frmMain->mnuQuarkStars.Checked = false;
  clsParticle quark = background(16, 5722.5, 4560);
  quark.red = 100;
  quark.green = 200;
  quark.blue = 160;
  quark.paintSelf();
  EXPECT_EQ(pixelAt(canvas(), 5722.5, 4560.0), RGB(0, 40, 0));
  quark.depth = 5;
  quark.paintSelf();
  EXPECT_EQ(pixelAt(canvas(), 5722.5, 4560.0), RGB(50, 150, 110));
}

TEST_F(ParticlePainting, DarkQuarkIsInvisible) {
  frmMain->mnuQuarkStars.Checked = false;
  clsParticle quark = background(16, 5722.5, 4560);
  quark.red = quark.green = quark.blue = 160;
  quark.paintSelf();
  EXPECT_TRUE(isEmpty());
}

TEST_F(ParticlePainting, QuarkKeepsItsColourThroughStarsMode) {
  clsParticle quark = background(5, 5722.5, 4560);
  quark.red = 100;
  quark.green = 200;
  quark.blue = 160;
  quark.paintSelf();
  ASSERT_EQ(pixelAt(canvas(), 5722.5, 4560.0), RGB(150, 150, 150));
  frmMain->mnuQuarkStars.Checked = false;
  quark.paintSelf();
  EXPECT_EQ(pixelAt(canvas(), 5722.5, 4560.0), RGB(50, 150, 110));
}

TEST_F(ParticlePainting, TheShiftPullsTowardsTheCentre) {
  // Depth 8 pulls .4 of the way: (3000, 2000) becomes .4 * 2722.5 + 3000 = 4089 and .4 * 2560 + 2000 = 3024.
  background(8, 3000, 2000).paintSelf();
  EXPECT_EQ(pixelAt(canvas(), 4089.0, 3024.0), RGB(120, 120, 120));
  EXPECT_EQ(pixelAt(canvas(), 3000.0, 2000.0), Colour{});
}

TEST_F(ParticlePainting, TheCentreIsNotShiftedAtAnyDepth) {
  for (std::int16_t depth = 1; depth <= 16; ++depth) {
    canvas().Cls();
    background(depth, 5722.5, 4560).paintSelf();
    EXPECT_NE(pixelAt(canvas(), 5722.5, 4560.0), Colour{}) << depth;
  }
}

TEST_F(ParticlePainting, TheRadiusShrinksWithTheDepth) {
  background(1, 5722.5, 4560).paintSelf();  // 29 twips, 2 pixels
  const int near = countPixels(canvas(), RGB(190, 190, 190));
  canvas().Cls();
  background(16, 5722.5, 4560).paintSelf();  // 14 twips, 1 pixel
  const int far = countPixels(canvas(), RGB(40, 40, 40));
  EXPECT_GT(near, far);
  EXPECT_GE(far, 5);
  EXPECT_GE(near, 13);
}

TEST_F(ParticlePainting, CanvasIsTestedAfterTheShift) {
  background(10, -2000, 4560).paintSelf();  // .5 * 7722.5 - 2000 = 1861
  EXPECT_EQ(pixelAt(canvas(), 1861.0, 4560.0), RGB(100, 100, 100));
  canvas().Cls();
  background(1, -2000, 4560).paintSelf();  // .05 * 7722.5 - 2000: still outside
  EXPECT_TRUE(isEmpty());
  background(10, 5722.5, -2000).paintSelf();  // .5 * 6560 - 2000 = 1280
  EXPECT_EQ(pixelAt(canvas(), 5722.5, 1280.0), RGB(100, 100, 100));
}

TEST_F(ParticlePainting, OutsideTheWorldABackgroundParticleIsNotDrawn) {
  for (const Vector& corner : {Vector{0, 0}, Vector{100000, 100000}}) {
    modMain::world.localPlayer.position = corner;
    clsParticle particle = background(1, 0, 0);
    particle.position = corner;
    canvas().Cls();
    particle.paintSelf();
    EXPECT_FALSE(isEmpty()) << "the bounds are in the world";
    const float out = corner.x == 0 ? -1.0F : 1.0F;
    for (const Vector& step : {Vector{out, 0}, Vector{0, out}}) {
      particle.position = {corner.x + step.x, corner.y + step.y};
      canvas().Cls();
      particle.paintSelf();
      EXPECT_TRUE(isEmpty());
    }
  }
}

TEST_F(ParticlePainting, ADepthThatWouldDarkenBelowBlackIsAFault) {
  EXPECT_THROW(background(21, 5722.5, 4560).paintSelf(), RuntimeFault);
  background(20, 5722.5, 4560).paintSelf();
}

TEST_F(ParticlePainting, Q124ABallIsAnchoredAtItsLowerRightCorner) {
  canvas().BackColor = RGB(255, 255, 255);
  canvas().Cls();
  ball(ParticleType::Network, 3015, 3015).paintSelf();
  const Colour cell = spriteOnWhite(7, ballsGreen, 0);
  // 315 back: pixels 180 to 200.
  EXPECT_EQ(countPixels(canvas(), cell), 21 * 21);
  EXPECT_EQ(pixelAt(canvas(), 180, 180), cell);
  EXPECT_EQ(pixelAt(canvas(), 200, 200), cell);
  EXPECT_EQ(pixelAt(canvas(), 201, 201), RGB(255, 255, 255)) << "not the position itself";
}

TEST_F(ParticlePainting, BallIsNotShiftedAndMayTouchTheCanvasEdges) {
  machine.seconds = 0;  // the only time of day at which explosions are visible
  for (const ParticleType type : {ParticleType::Network, ParticleType::Explosion}) {
    canvas().Cls();
    ball(type, 11445, 9120).paintSelf();
    EXPECT_FALSE(isEmpty());
    for (const Vector& place : {Vector{-1, 300}, Vector{300, -1}, Vector{11446, 300}, Vector{300, 9121}}) {
      canvas().Cls();
      ball(type, place.x, place.y).paintSelf();
      EXPECT_TRUE(isEmpty());
    }
  }
}

TEST_F(ParticlePainting, ABallIsDrawnOutsideTheWorldToo) {
  machine.seconds = 0;  // the only time of day at which explosions are visible
  for (const Vector& corner : {Vector{0, 0}, Vector{100000, 100000}}) {
    modMain::world.localPlayer.position = corner;
    const float out = corner.x == 0 ? -500.0F : 500.0F;
    for (const Vector& step : {Vector{out, 0}, Vector{0, out}}) {
      for (const ParticleType type : {ParticleType::Network, ParticleType::Explosion}) {
        clsParticle particle = ball(type, 0, 0);
        particle.position = {corner.x + step.x, corner.y + step.y};
        canvas().Cls();
        particle.paintSelf();
        EXPECT_FALSE(isEmpty()) << step.x << ", " << step.y;
      }
    }
  }
}

TEST_F(ParticlePainting, Q121ARemovedBallIsStillPainted) {
  modMain::receiveParticleNew("n", 3, 50000, 50000, 0, 0);
  modMain::receiveParticleRemove("n");
  ASSERT_FALSE(modMain::world.netParticles[0].spawned);
  modMain::world.netParticles[0].paintSelf();
  EXPECT_FALSE(isEmpty());
}

TEST_F(ParticlePainting, AReservedParticleDrawsNothing) {
  ball(ParticleType::Reserved, 3000, 3000).paintSelf();
  clsParticle other = ball(ParticleType::Reserved, 3000, 3000);
  other.type = ParticleType{77};
  other.paintSelf();
  EXPECT_TRUE(isEmpty());
}

TEST_F(ParticlePainting, Q119AnExplosionParticleLivesForElevenInvisiblePaints) {
  modMain::addExplosion({50000, 50000}, 2);
  for (int paint = 1; paint <= 10; ++paint) {
    modMain::world.explosionParticles[0].paintSelf();
    ASSERT_EQ(modMain::world.explosionCount, 2) << paint;
  }
  modMain::world.explosionParticles[0].paintSelf();
  EXPECT_EQ(modMain::world.explosionCount, 1);
  EXPECT_EQ(modMain::world.explosionParticles[0].num_, 0);
  EXPECT_TRUE(isEmpty());
}

TEST_F(ParticlePainting, AnExplosionParticleAgesOffTheCanvasToo) {
  modMain::addExplosion({10000, 10000}, 1);
  for (int paint = 1; paint <= 10; ++paint) {
    modMain::world.explosionParticles[0].paintSelf();
    ASSERT_EQ(modMain::world.explosionParticles[0].age, paint);
    EXPECT_EQ(modMain::world.explosionParticles[0].blink, paint % 2 == 1);
  }
  modMain::world.explosionParticles[0].paintSelf();
  EXPECT_EQ(modMain::world.explosionCount, 0);
}

TEST_F(ParticlePainting, ExplosionParticleOutsideItsPoolCountsUpTo32767Paints) {
  // Created by the console from background particles: another particle is removed, or none.
  clsParticle particle;
  particle.type = ParticleType::Explosion;
  particle.age = 32766;
  particle.paintSelf();
  EXPECT_EQ(particle.age, 32767);
  EXPECT_THROW(particle.paintSelf(), RuntimeFault);
  EXPECT_EQ(particle.age, 32767);
}

TEST_F(ParticlePainting, Q301AServerParticleOfAnUnknownKindIsAStar) {
  // A particle without a position is in the world's upper left corner until a position arrives.
  EXPECT_THROW(modMain::receiveParticleNew("n", 256, 50000, 50000, 0, 0), RuntimeFault);
  modMain::receiveParticlePosition("n", 51000, 50000);
  ASSERT_EQ(modMain::world.netParticleCount, 1);
  modMain::world.netParticles[0].paintSelf();
  EXPECT_EQ(pixelAt(canvas(), 5722.0 + 1000, 4560.0), RGB(200, 200, 200)) << "a star of depth 0";
  EXPECT_EQ(countPixels(canvas(), RGB(200, 200, 200)), 21) << "a disc of two pixels' radius: 5 by 5 without corners";
}

TEST_F(ParticlePainting, Q119InTheHalfSecondOfMidnightItBlinks) {
  canvas().BackColor = RGB(255, 255, 255);
  modMain::addExplosion({50000, 50000}, 1);
  clsParticle& particle = modMain::world.explosionParticles[0];
  particle.kind = 3;
  machine.seconds = 0.5;  // rounds to 0, ties to even
  const auto colourNow = [&] {
    canvas().Cls();
    particle.paintSelf();
    return pixelAt(canvas(), 5722 - 100.0, 4560 - 100.0);
  };
  EXPECT_EQ(colourNow(), spriteOnWhite(3, ballsGreen, 0));
  EXPECT_EQ(colourNow(), exchangedOnWhite(3, ballsGreen));
  EXPECT_EQ(colourNow(), spriteOnWhite(3, ballsGreen, 0));
  EXPECT_EQ(particle.age, 0);
  machine.seconds = 0.6;
  EXPECT_EQ(colourNow(), RGB(255, 255, 255));
  EXPECT_EQ(particle.age, 1);
}

}  // namespace
}  // namespace kelvora
