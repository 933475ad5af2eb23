#include <gtest/gtest.h>

#include "tests/support/gameTest.h"

// The step of a server particle from one position to the next.
namespace kelvora {
namespace {

// The local player is at (50000, 50000), so the canvas shows 44278 to 55723 across and 45440 to 54560 down.
class ParticleGlide : public GameTest {
 protected:
  ParticleGlide() {
    modMain::world.localPlayer.position = {50000, 50000};
    particle.initNormal(1, "n", 4, 50000, 50000, 0, 0);
    particle.hasPosition = true;
    particle.stepSet = true;
  }
  clsParticle particle;
};

TEST_F(ParticleGlide, StepIsKeptUntilAPositionIsReached) {
  particle.velocity = {-30, -40};
  particle.positionQueue = {{48000, 48000}};
  particle.moveNormal();
  particle.moveNormal();
  EXPECT_EQ(particle.velocity, (Vector{-30, -40}));
  EXPECT_EQ(particle.position, (Vector{49940, 49920}));
}

TEST_F(ParticleGlide, AnArrivalEndsTheStep) {
  particle.velocity = {-30, -40};
  particle.positionQueue = {{49800, 49900}, {49100, 47800}};
  particle.moveNormal();
  // Arrives, then moves a seventh of (-700, -2100).
  EXPECT_EQ(particle.velocity, (Vector{-100, -300}));
  EXPECT_EQ(particle.position, (Vector{49700, 49600}));
}

TEST_F(ParticleGlide, OffCanvasReplayEndsTheStepToo) {
  particle.velocity = {-30, -40};
  particle.positionQueue = {{56000, 50000}, {53900, 47200}};
  particle.moveNormal();
  EXPECT_EQ(particle.velocity, (Vector{-300, -400})) << "a seventh of (-2100, -2800)";
}

TEST_F(ParticleGlide, Q115AJumpKeepsTheOldStep) {
  particle.velocity = {-30, -40};
  particle.position = {20000, 20000};
  particle.positionQueue = {{50000, 50000}, {47900, 47900}};
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{50000, 50000}));
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{49970, 49960})) << "not a seventh of the way to the next position";
}

// Reached in three ways: two off the canvas and a jump in the first frame, an arrival in the second.
TEST_F(ParticleGlide, ReachedPositionsNoLongerCountTowardsTheLimit) {
  for (const Vector point : {Vector{90000, 90000}, Vector{10000, 10000}, Vector{50100, 50000}, Vector{50200, 50000}}) {
    particle.queuePosition(point);
  }
  ASSERT_EQ(modMain::world.queuedPositions, 4U);
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{50100, 50000}));
  EXPECT_EQ(modMain::world.queuedPositions, 1U);
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{50200, 50000}));
  EXPECT_EQ(modMain::world.queuedPositions, 0U);
}

TEST_F(ParticleGlide, StepWithAZeroOnEitherAxisIsDiscarded) {
  for (const Vector step : {Vector{-30, 0}, Vector{0, -30}}) {
    particle.stepSet = true;
    particle.position = {50000, 50000};
    particle.velocity = step;
    particle.positionQueue = {{49300, 47900}};
    particle.moveNormal();
    EXPECT_EQ(particle.velocity, (Vector{-100, -300}));
  }
}

TEST_F(ParticleGlide, LastPointOfAStepIsTheQueuedOne) {
  particle.velocity = {-30, -40};
  particle.positionQueue = {{49800, 49900}};
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{49800, 49900})) << "no step after the last position";
  EXPECT_FALSE(particle.stepSet);
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{49800, 49900}));
}

}  // namespace
}  // namespace kelvora
