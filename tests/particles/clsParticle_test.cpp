#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

constexpr ParticleType background{0};
constexpr ParticleType network{1};
constexpr ParticleType explosion{2};
constexpr ParticleType reserved{3};

// The local player is at (50000, 50000). The canvas is 11445 by 9120.
class Particles : public GameTest {
 protected:
  Particles() { modMain::world.localPlayer.position = {50000, 50000}; }
  void script(std::initializer_list<float> draws) { machine.scriptedDraws.assign(draws); }
  clsParticle particle;
};

TEST_F(Particles, BackgroundParticleDrawsColourDepthPositionAndVelocityInThisOrder) {
  // Colour 0, 127, 254; depth Int(.5 * 15) + 2 = 9; position Int(.1 * 11445) = 1144 and Int(.2 * 9120) = 1824, signs
  // minus and plus; velocity Int(.5 * 15 + 1) = 8 plus, Int(.9 * 15 + 1) = 14 minus.
  script({0, 0.5F, 0.999F, 0.5F, 0.1F, 0.2F, 0.5F, 0.6F, 0.5F, 0.7F, 0.9F, 0.3F});
  particle.init(purplePlayer, background, 1, 2);
  EXPECT_TRUE(machine.scriptedDraws.empty());
  EXPECT_EQ(particle.num_, 5);
  EXPECT_EQ(particle.red, 0);
  EXPECT_EQ(particle.green, 127);
  EXPECT_EQ(particle.blue, 254);
  EXPECT_EQ(particle.depth, 9);
  EXPECT_EQ(particle.maxSpeed, 15);
  EXPECT_EQ(particle.position, (Vector{50000 + 1144, 50000 - 1824})) << "the player's position minus the drawn offset";
  EXPECT_EQ(particle.velocity, (Vector{8, -14}));
  EXPECT_EQ(particle.fieldWidth, 11445);
  EXPECT_EQ(particle.fieldHeight, 9120);
}

TEST_F(Particles, DepthAtCreationRunsFromTwoToSixteen) {
  script({0, 0, 0, 0});
  particle.init(redPlayer, background, 0, 0);
  EXPECT_EQ(particle.depth, 2);
  script({0.999F, 0, 0, 0.9999F});
  particle.init(redPlayer, background, 0, 0);
  EXPECT_EQ(particle.depth, 16);
  EXPECT_EQ(particle.red, 254) << "the brightest, as with the other colours";
}

TEST_F(Particles, AnExplosionParticleDrawsItsKindAndFliesOut) {
  // Kind 9; Int(.5 * 100 + 1) = 51 minus; Int(.05 * 100 + 1) = 6 plus, slower than 10, so 90.
  script({0.95F, 0.5F, 0, 0.05F, 0.9F});
  particle.init(cyanPlayer, explosion, 100, 200);
  EXPECT_TRUE(machine.scriptedDraws.empty());
  EXPECT_EQ(particle.kind, 9);
  EXPECT_EQ(particle.maxSpeed, 100);
  EXPECT_EQ(particle.depth, 0);
  EXPECT_EQ(particle.position, (Vector{100, 200}));
  EXPECT_EQ(particle.velocity, (Vector{-51, 90}));
}

TEST_F(Particles, ASpeedOfTenIsNotRaised) {
  script({0, 0.095F, 0.9F, 0.085F, 0});
  particle.init(cyanPlayer, explosion, 0, 0);
  EXPECT_EQ(particle.velocity, (Vector{10, -135}));
}

TEST_F(Particles, ReservedParticleTakesAPositionAndDrawsNothing) {
  script({0.5F});
  particle.velocity = {3, 4};
  particle.init(cyanPlayer, reserved, 100, 200);
  EXPECT_EQ(machine.scriptedDraws.size(), 1U);
  EXPECT_EQ(particle.position, (Vector{100, 200}));
  EXPECT_EQ(particle.velocity, (Vector{3, 4}));
}

TEST_F(Particles, NetworkTypeKeepsItsPositionAndSpeedLimit) {
  particle.position = {7, 8};
  particle.maxSpeed = 15;
  script({0.5F, 0.9F, 0.5F, 0.9F});
  particle.init(cyanPlayer, network, 100, 200);
  EXPECT_EQ(particle.position, (Vector{7, 8}));
  EXPECT_EQ(particle.velocity, (Vector{8, 8}));
}

TEST_F(Particles, Q266TheNumberCanBeSetInTwoWays) {
  particle.setNum(4);
  EXPECT_EQ(particle.num_, 4);
  particle.num(5);
  EXPECT_EQ(particle.num_, 5);
}

TEST_F(Particles, Q267TwoNumbersAreNeverRead) {
  particle.init(redPlayer, reserved, 0, 0, 7, -8);
  EXPECT_EQ(particle.first, 7);
  EXPECT_EQ(particle.second, -8);
  particle.init(redPlayer, background, 0, 0, 1, 2);
  EXPECT_EQ(particle.first, 7);
  EXPECT_EQ(particle.second, -8);
  particle.init(redPlayer, explosion, 0, 0, 1, 2);
  EXPECT_EQ(particle.first, 10);
  EXPECT_EQ(particle.second, -8);
}

TEST_F(Particles, Q116TheTwoSimilarDrawsDiffer) {
  // A sign is negative up to 500 out of 1000.
  particle.maxSpeed = 0;
  script({0, 0.5009F, 0, 0.5011F});
  particle.chooseVelocity();
  EXPECT_EQ(particle.velocity, (Vector{-1, 1}));
  // A coin is true up to 4999 out of 10000.
  script({0.49985F});
  EXPECT_TRUE(modMain::coinFlip());
  script({0.4999F, 0.5F});
  EXPECT_FALSE(modMain::coinFlip());
  EXPECT_FALSE(modMain::coinFlip());
}

TEST_F(Particles, AParticleOneFieldAwayIsNotWrappedAndOneUnitMoreIs) {
  particle.fieldWidth = 11445;
  particle.fieldHeight = 9120;
  particle.depth = 3;
  for (const float side : {-1.0F, 1.0F}) {
    particle.position = {50000 + side * 11445, 50000 + side * 9120};
    const Vector before = particle.position;
    particle.wrap();
    EXPECT_EQ(particle.position, before);

    // Scatter: Int(.1 * 500) = 50 plus on x, Int(.2 * 500) = 100 minus on y, depth Int(.4 * 15) + 1 = 7.
    particle.position = {50000 + side * 11446, 50000};
    script({0.1F, 0.9F, 0.2F, 0.1F, 0.4F});
    particle.wrap();
    EXPECT_TRUE(machine.scriptedDraws.empty());
    EXPECT_EQ(particle.position, (Vector{50000 - side * 11145 + 50, 49900}));
    EXPECT_EQ(particle.depth, 7);

    particle.position = {50000, 50000 + side * 9121};
    script({0.1F, 0.9F, 0.2F, 0.1F, 0.4F});
    particle.wrap();
    EXPECT_EQ(particle.position, (Vector{50050, 50000 - side * 8820 - 100}));
  }
}

TEST_F(Particles, FarOutOnBothAxesScattersTwice) {
  particle.fieldWidth = 11445;
  particle.fieldHeight = 9120;
  particle.position = {0, 0};
  script({0.1F, 0.9F, 0.1F, 0.9F, 0, 0.2F, 0.9F, 0.2F, 0.9F, 0.999F});
  particle.wrap();
  EXPECT_TRUE(machine.scriptedDraws.empty());
  EXPECT_EQ(particle.position, (Vector{50000 + 11145 + 150, 50000 + 8820 + 100}));
  EXPECT_EQ(particle.depth, 15);
}

TEST_F(Particles, EachAxisWrapsAroundThePlayer) {
  modMain::world.localPlayer.position = {20000, 70000};
  particle.fieldWidth = 11445;
  particle.fieldHeight = 9120;
  for (const float side : {-1.0F, 1.0F}) {
    // Draws of 0 scatter by nothing.
    script({0, 0, 0, 0, 0});
    particle.position = {20000 + side * 12000, 70000};
    particle.wrap();
    EXPECT_EQ(particle.position, (Vector{20000 - side * 11145, 70000}));
    script({0, 0, 0, 0, 0});
    particle.position = {20000, 70000 + side * 10000};
    particle.wrap();
    EXPECT_EQ(particle.position, (Vector{20000, 70000 - side * 8820}));
  }
}

TEST_F(Particles, OnlyTheBackgroundIsWrapped) {
  for (const ParticleType type : {network, explosion, reserved}) {
    particle.type = type;
    particle.position = {0, 0};
    particle.wrap();
    EXPECT_EQ(particle.position, (Vector{0, 0}));
  }
}

TEST_F(Particles, FieldSizeIsTheCanvasSizeAtCreation) {
  particle.choosePosition();
  frmMain->canvas.Width = 2000;
  EXPECT_EQ(particle.fieldWidth, 11445) << "not refreshed";
}

TEST_F(Particles, MotionFollowsDepthAndTimeScale) {
  particle.maxSpeed = 15;
  particle.velocity = {15, -15};
  particle.depth = 1;
  particle.move();
  EXPECT_FLOAT_EQ(particle.position.x, 14) << "14/15 of 15";
  EXPECT_FLOAT_EQ(particle.position.y, -14);
  modMain::world.frameTime = 20;
  particle.move();
  EXPECT_FLOAT_EQ(particle.position.x, 42);
  EXPECT_FLOAT_EQ(particle.position.y, -42);
}

TEST_F(Particles, Q117Depth15StandsAndDepth16DriftsBackwards) {
  particle.maxSpeed = 15;
  particle.velocity = {15, -15};
  particle.depth = 15;
  particle.move();
  EXPECT_EQ(particle.position, (Vector{0, 0}));
  particle.depth = 16;
  particle.move();
  EXPECT_FLOAT_EQ(particle.position.x, -1);
  EXPECT_FLOAT_EQ(particle.position.y, 1);
}

TEST_F(Particles, LimitAppliesToBothAxesInBothDirections) {
  particle.maxSpeed = 15;
  for (const Vector fast : {Vector{20, 20}, Vector{-20, -20}, Vector{20, -20}, Vector{-20, 20}}) {
    particle.velocity = fast;
    particle.move();
    EXPECT_EQ(particle.velocity, (Vector{fast.x * 0.75F, fast.y * 0.75F}));
  }
}

TEST_F(Particles, AnotherTypeKeepsTheDepth) {
  particle.init(redPlayer, background, 0, 0);
  particle.depth = 9;
  for (const ParticleType type : {network, explosion, reserved}) {
    particle.init(redPlayer, type, 0, 0);
    EXPECT_EQ(particle.depth, 9);
  }
}

TEST_F(Particles, VelocityIsClampedToTheLimit) {
  particle.maxSpeed = 100;
  particle.velocity = {150, -135};
  particle.move();
  EXPECT_EQ(particle.velocity, (Vector{100, -100}));
  EXPECT_EQ(particle.position, (Vector{100, -100}));
  particle.maxSpeed = 0;
  particle.move();
  EXPECT_EQ(particle.velocity, (Vector{0, 0}));
}

class NetParticles : public Particles {
 protected:
  NetParticles() {
    particle.initNormal(1, "n", 4, 50000, 50000, 0, 0);
    particle.hasPosition = true;
  }
};

TEST_F(NetParticles, InitNormalStoresTheServersValues) {
  clsParticle fresh;
  fresh.initNormal(3, "abc", 255, 10, 20, 30, 40);
  EXPECT_EQ(fresh.num_, 3);
  EXPECT_EQ(fresh.id, "abc");
  EXPECT_EQ(fresh.kind, 255);
  EXPECT_EQ(fresh.type, network);
  EXPECT_EQ(fresh.position, (Vector{10, 20}));
  EXPECT_EQ(fresh.velocity, (Vector{30, 40}));
  EXPECT_TRUE(fresh.spawned);
  EXPECT_FALSE(fresh.hasPosition);
  EXPECT_TRUE(fresh.positionQueue.empty());
  EXPECT_EQ(fresh.maxSpeed, 0);
  EXPECT_EQ(fresh.depth, 0);
}

TEST_F(NetParticles, Q301AKindThatDoesNotExistLeavesTheTypeAsItIs) {
  for (const std::int16_t kind : {std::int16_t{-1}, std::int16_t{256}}) {
    clsParticle fresh;
    EXPECT_THROW(fresh.initNormal(3, "abc", kind, 10, 20, 30, 40), RuntimeFault) << kind;
    EXPECT_EQ(fresh.num_, 3) << "stored before the kind";
    EXPECT_EQ(fresh.id, "abc");
    EXPECT_EQ(fresh.type, ParticleType::Background);
    EXPECT_EQ(fresh.position, (Vector{0, 0}));
    EXPECT_FALSE(fresh.spawned);
  }
  for (const std::int16_t kind : {std::int16_t{0}, std::int16_t{255}}) {
    particle.initNormal(1, "n", kind, 0, 0, 0, 0);
    EXPECT_EQ(particle.kind, kind);
  }
}

TEST_F(NetParticles, InitNormalEmptiesTheQueue) {
  particle.positionQueue = {{1, 1}, {2, 2}};
  particle.initNormal(3, "abc", 5, 10, 20, 0, 0);
  EXPECT_TRUE(particle.positionQueue.empty());
  EXPECT_FALSE(particle.hasPosition);
}

TEST_F(NetParticles, TheFirstPositionSnapsAndIsNotQueued) {
  particle.hasPosition = false;
  particle.queuePosition({90000, 100});
  EXPECT_EQ(particle.position, (Vector{90000, 100}));
  EXPECT_TRUE(particle.positionQueue.empty());
  particle.queuePosition({90001, 100});
  EXPECT_EQ(particle.positionQueue.size(), 1U);
}

TEST_F(NetParticles, PositionsOutsideTheWorldAreDropped) {
  for (const Vector outside : {Vector{-1, 5}, Vector{5, -1}, Vector{100001, 5}, Vector{5, 100001}}) {
    particle.queuePosition(outside);
  }
  EXPECT_TRUE(particle.positionQueue.empty());
  particle.queuePosition({0, 100000});
  EXPECT_EQ(particle.positionQueue.size(), 1U);
}

TEST_F(NetParticles, WithoutAPositionTakesTheNewestEntryAndKeepsTheQueue) {
  particle.hasPosition = false;
  particle.positionQueue = {{1, 1}, {2, 2}};
  particle.moveNormal();
  EXPECT_TRUE(particle.hasPosition);
  EXPECT_EQ(particle.position, (Vector{2, 2}));
  EXPECT_EQ(particle.positionQueue.size(), 2U);
}

TEST_F(NetParticles, Q267ThePreviousPositionIsNeverRead) {
  particle.position = {49000, 48000};
  particle.positionQueue = {{48900, 47900}};
  particle.moveNormal();
  EXPECT_EQ(particle.previousPosition, (Vector{49000, 48000}));
  particle.moveNormal();
  EXPECT_EQ(particle.previousPosition, (Vector{49000, 48000})) << "an empty queue ends the frame before";
}

TEST_F(NetParticles, NearPointsAreReachedOnePerFrame) {
  particle.positionQueue = {{49800, 49800}, {49600, 49600}, {49400, 49400}};
  particle.moveNormal();
  // Jumps to the first. The step towards the second starts in the same frame: -200 / 7.
  EXPECT_EQ(particle.positionQueue.size(), 2U);
  EXPECT_NEAR(particle.position.x, 49800 - 200 / 7.0, 0.01);
  particle.moveNormal();
  EXPECT_EQ(particle.positionQueue.size(), 1U);
  EXPECT_NEAR(particle.position.x, 49600 - 200 / 7.0, 0.01);
}

TEST_F(NetParticles, TheLastNearPointIsReachedExactly) {
  particle.positionQueue = {{50300, 50300}};
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{50300, 50300}));
  EXPECT_TRUE(particle.positionQueue.empty());
}

TEST_F(NetParticles, OffCanvasPointsAreReachedInOneFrameWithoutAStep) {
  particle.positionQueue = {{10000, 10000}, {90000, 90000}};
  particle.velocity = {-5, -5};
  particle.stepSet = true;
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{90000, 90000}));
  EXPECT_TRUE(particle.positionQueue.empty());
  EXPECT_FALSE(particle.stepSet);
}

TEST_F(NetParticles, Above10000TheFrameEndsWithAJump) {
  particle.position = {40000, 40000};
  particle.positionQueue = {{50000, 50000}, {49000, 49000}};
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{50000, 50000}));
  EXPECT_EQ(particle.positionQueue.size(), 1U);
}

TEST_F(NetParticles, Exactly500And10000TakeTheStep) {
  particle.positionQueue = {{49700, 49600}};
  particle.moveNormal();
  EXPECT_EQ(particle.positionQueue.size(), 1U);
  EXPECT_NEAR(particle.position.x, 50000 - 300 / 7.0, 0.01);
  particle.stepSet = false;
  particle.position = {56000, 58000};
  particle.positionQueue = {{50000, 50000}};
  particle.moveNormal();
  EXPECT_EQ(particle.positionQueue.size(), 1U);
  EXPECT_NEAR(particle.position.y, 58000 - 8000 / 7.0, 0.01);
}

TEST_F(NetParticles, Q118RightwardAndDownwardStepsAreCutToZero) {
  particle.positionQueue = {{52100, 47900}};
  particle.moveNormal();
  EXPECT_EQ(particle.velocity, (Vector{0, -300}));
  EXPECT_EQ(particle.position, (Vector{50000, 49700}));
  particle.position = {50000, 50000};
  particle.stepSet = false;
  particle.positionQueue = {{47900, 52100}};
  particle.moveNormal();
  EXPECT_EQ(particle.position, (Vector{49700, 50000}));
}

TEST_F(NetParticles, StepWithAZeroIsRecomputed) {
  particle.positionQueue = {{50000, 47900}};
  particle.moveNormal();
  // dx is 0, so +1, which the limit cuts to 0. The next frame discards the step.
  EXPECT_EQ(particle.position, (Vector{50000, 49700}));
  particle.moveNormal();
  EXPECT_NEAR(particle.velocity.y, -1800 / 7.0, 0.01);
}

TEST_F(NetParticles, TheStoredStepIsScaledAgainInEveryFrame) {
  particle.positionQueue = {{47900, 47900}};
  modMain::world.frameTime = 15;
  particle.moveNormal();
  EXPECT_EQ(particle.velocity, (Vector{-450, -450}));
  particle.moveNormal();
  EXPECT_EQ(particle.velocity, (Vector{-675, -675})) << "the stored step is scaled again";
}

}  // namespace
}  // namespace kelvora
