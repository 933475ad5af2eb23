#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

// At the design size the canvas is 11445 by 9120 with its centre at (5722, 4560). The mouse selects full speed from a
// distance of 4560.
class Movement : public GameTest {
 protected:
  Movement() {
    player.init(redPlayer, -1, 7, "Ann");
    player.awaitingFirstPosition = false;
    player.breaksOn = false;
    player.position = {50000, 50000};
    modMain::world.mousePos = {5722, 0};  // 4560 above the centre: ratio 1
  }

  void steer(std::int16_t angle, std::int16_t quadrant) {
    modMain::world.steerAngle = angle;
    modMain::world.steerQuadrant = quadrant;
  }
  void expectVelocity(float x, float y) {
    EXPECT_NEAR(player.velocity.x, x, 0.002);
    EXPECT_NEAR(player.velocity.y, y, 0.002);
  }
  void stand(float x, float y) { player.position = {x, y}; }

  clsPlayer& player = modMain::world.localPlayer;
};

struct SteerCase {
  std::int16_t angle;
  float across;  // of speed 300
};

class MovementSteering : public Movement, public testing::WithParamInterface<SteerCase> {};

TEST_P(MovementSteering, SharesTheSpeedInEveryQuadrant) {
  const auto [angle, across] = GetParam();
  const float along = 300 - across;
  const float signs[5][2] = {{}, {1, -1}, {-1, -1}, {-1, 1}, {1, 1}};
  for (std::int16_t quadrant = 1; quadrant <= 4; ++quadrant) {
    stand(50000, 50000);
    steer(angle, quadrant);
    player.move();
    const float x = signs[quadrant][0] * across;
    const float y = signs[quadrant][1] * along;
    expectVelocity(x, y);
    EXPECT_NEAR(player.position.x, 50000 + x, 0.01) << "quadrant " << quadrant;
    EXPECT_NEAR(player.position.y, 50000 + y, 0.01) << "quadrant " << quadrant;
  }
}

// Of a speed of 300, the share is tan / 2 below 45 and (tan of the rest + 1) / 2 from 45 on: tan 30 = 0.57735, tan 44 =
// 0.965687 with the game's pi, tan 15 = 0.267949, tan 43 = 0.932514.
INSTANTIATE_TEST_SUITE_P(Angles, MovementSteering,
                         testing::Values(SteerCase{0, 0}, SteerCase{30, 86.6025F}, SteerCase{44, 144.8531F},
                                         SteerCase{45, 150}, SteerCase{60, 190.1923F}, SteerCase{88, 289.8770F},
                                         SteerCase{90, 300}));

// With all decimals of pi the shares would be 144.8533 and 289.8773: tan 44 = 0.9656888, tan 43 = 0.9325151. The game's
// pi is 2.654e-6 too small, which lowers them by 0.00019 and 0.00018.
TEST_F(Movement, Q237PiHasFiveDecimals) {
  steer(44, 1);
  player.move();
  EXPECT_NEAR(player.velocity.x, 144.85313, 0.00005);
  steer(88, 1);
  player.move();
  EXPECT_NEAR(player.velocity.x, 289.87708, 0.00005);
}

TEST_F(Movement, Q090SpeedIsTheSumOfBothAxes) {
  for (std::int16_t angle = 0; angle <= 88; ++angle) {
    steer(angle, 4);
    stand(50000, 50000);
    player.move();
    EXPECT_NEAR(player.velocity.x + player.velocity.y, 300, 0.01) << angle;
  }
}

TEST_F(Movement, TwoRangesMeetAt45) {
  steer(44, 1);
  player.move();
  const float below = player.velocity.x;
  steer(45, 1);
  player.move();
  EXPECT_NEAR(below, 144.85, 0.01);
  EXPECT_EQ(player.velocity, (Vector{150, -150}));
}

TEST_F(Movement, TheLargestAngleLeavesYASmallShare) {
  steer(88, 3);
  player.move();
  expectVelocity(-289.877F, 10.123F);
}

TEST_F(Movement, Q092BeforeTheFirstPaintNothingSteers) {
  steer(0, 0);
  player.velocity = {12, -7};
  player.move();
  EXPECT_EQ(player.velocity, (Vector{12, -7})) << "left as it is";
  EXPECT_EQ(player.position, (Vector{50012, 49993}));
}

TEST_F(Movement, Q092SteersByThePreviousPaintsBearing) {
  modMain::world.mousePos = {5722 + 3000, 4560};
  steer(0, 2);  // from an older mouse position
  player.move();
  EXPECT_LE(player.velocity.x, 0) << "the old bearing still steers";
  modMain::paintPointer();
  player.move();
  EXPECT_GT(player.velocity.x, 0);
}

TEST_F(Movement, FollowsTheMouseThroughThePointer) {
  modMain::world.mousePos = {5722 + 3000, 4560 - 3000};
  modMain::paintPointer();
  EXPECT_EQ(modMain::world.steerAngle, 44) << "45 degrees are 43.75 of 350";
  EXPECT_EQ(modMain::world.steerQuadrant, 1);
  player.move();
  // 4242.641 of 4560 is 0.930404, s = 279.1211; tan 44 / 2 of it is 134.7722.
  EXPECT_NEAR(player.velocity.x, 134.772, 0.005);
  EXPECT_NEAR(player.velocity.y, -144.349, 0.005);
}

TEST_F(Movement, Q091StraightBelowFliesUpAndStraightLeftFliesRight) {
  modMain::world.mousePos = {5722, 9120};
  modMain::paintPointer();
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, -300}));
  modMain::world.mousePos = {0, 4560};
  modMain::paintPointer();
  player.move();
  // 5722 / 0.0001 leaves the arc tangent a step below the right angle: 87.49999, so 87 and tan 42 = 0.900404.
  EXPECT_NEAR(player.velocity.x, 285.0606, 0.005);
  EXPECT_NEAR(player.velocity.y, -14.9394, 0.005);
}

TEST_F(Movement, Q096TheCanvasHeightIsTheReachOnBothAxes) {
  steer(0, 1);
  modMain::world.mousePos = {5722 + 2280, 4560};
  player.move();
  EXPECT_EQ(player.velocity.y, -150) << "half of half the height, to the side";
  modMain::world.mousePos = {5722, 4560 + 2280};
  player.move();
  EXPECT_EQ(player.velocity.y, -150);
  modMain::world.mousePos = {5722 + 5000, 4560};
  player.move();
  EXPECT_EQ(player.velocity.y, -300) << "never above the top speed";
}

TEST_F(Movement, MouseOnTheCentreStandsStillAndReports) {
  login();
  player.breaksOn = false;
  modMain::world.mousePos = {5722, 4560};
  modMain::paintPointer();
  for (int frame = 0; frame < 4; ++frame) player.move();
  EXPECT_EQ(player.position, (Vector{50000, 50000}));
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{131, {"50000", "50000"}}}));
}

TEST_F(Movement, Q097AGhostFliesAtDoubleSpeed) {
  player.alive = false;
  steer(45, 1);
  player.move();
  EXPECT_EQ(player.velocity, (Vector{300, -300})) << "600 in all, half on each axis";
  steer(0, 1);
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, -300})) << "600 on one axis is clamped";
}

TEST_F(Movement, TurboTriplesAndEscapesTheClamp) {
  player.powerups[turboSlot].active = true;
  steer(0, 1);
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, -900}));
  EXPECT_EQ(player.position, (Vector{50000, 49100}));
}

TEST_F(Movement, GhostAndTurboCombine) {
  player.powerups[turboSlot].active = true;
  player.alive = false;
  steer(0, 4);
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, 1800}));
}

TEST_F(Movement, Q093TheClampLimitsAFramesDisplacement) {
  modMain::world.frameTime = 20;  // time scale 2
  steer(0, 1);
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, -300})) << "not 600";
  steer(0, 4);
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, 300}));
  player.powerups[turboSlot].active = true;
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, 1800})) << "turbo alone is scaled in full";
}

TEST_F(Movement, ClampLimitsEachAxisEvenUnderTheBrakes) {
  player.breaksOn = true;
  player.velocity = {-500, 420};
  player.move();
  EXPECT_EQ(player.velocity, (Vector{-300, 300}));
}

TEST_F(Movement, TheTimeScaleMultipliesTheVelocity) {
  modMain::world.frameTime = 15;
  steer(45, 4);
  player.move();
  EXPECT_EQ(player.velocity, (Vector{225, 225}));
}

TEST_F(Movement, BrakesTakeThreePerFrameAndAxis) {
  player.breaksOn = true;
  player.velocity = {10, -4};
  player.move();
  EXPECT_EQ(player.velocity, (Vector{7, -1}));
  EXPECT_EQ(player.position, (Vector{50007, 49999}));
  player.move();
  EXPECT_EQ(player.velocity, (Vector{4, 0})) << "never past 0";
  player.move();
  EXPECT_EQ(player.velocity, (Vector{1, 0}));
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, 0}));
}

TEST_F(Movement, BrakesScaleWithTheTimeScale) {
  modMain::world.frameTime = 20;
  player.breaksOn = true;
  player.velocity = {-10, 100};
  player.move();
  EXPECT_EQ(player.velocity, (Vector{-4, 94}));
}

TEST_F(Movement, FullSpeedOnAnAxisBrakesInAHundredFrames) {
  player.breaksOn = true;
  player.velocity = {0, -300};
  for (int frame = 0; frame < 99; ++frame) player.move();
  EXPECT_EQ(player.velocity.y, -3);
  player.move();
  EXPECT_EQ(player.velocity.y, 0);
}

TEST_F(Movement, ReleasedBrakesGiveFullControlAtOnce) {
  player.breaksOn = true;
  player.velocity = {30, 30};
  player.move();
  player.toggleBreaks();
  steer(0, 1);
  player.move();
  EXPECT_EQ(player.velocity, (Vector{0, -300}));
}

TEST_F(Movement, Q095AStoppedPlayerKeepsLastPositionAndSendsNothing) {
  login();
  player.breaksOn = true;
  player.velocity = {};
  player.lastPosition = {1, 2};
  player.reportCounter = 3;
  for (int frame = 0; frame < 8; ++frame) player.move();
  EXPECT_EQ(player.lastPosition, (Vector{1, 2}));
  EXPECT_EQ(player.reportCounter, 3);
  EXPECT_TRUE(sentFrames().empty());
}

TEST_F(Movement, BrakesInMotionStillReport) {
  login();
  player.velocity = {300, 0};
  player.breaksOn = true;
  for (int frame = 0; frame < 4; ++frame) player.move();
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{131, {"51170", "50000"}}})) << "297 + 294 + 291 + 288";
}

TEST_F(Movement, ReportsInEveryFourthFrame) {
  login();
  player.breaksOn = false;
  steer(0, 1);
  modMain::world.mousePos = {5722, 0};
  for (int frame = 1; frame <= 3; ++frame) {
    player.move();
    EXPECT_TRUE(sentFrames().empty()) << frame;
  }
  player.move();
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{131, {"50000", "48800"}}}));
  for (int frame = 5; frame <= 8; ++frame) player.move();
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{131, {"50000", "48800"}}, {131, {"50000", "47600"}}}));
}

TEST_F(Movement, WhileWaitingForTheFirstPositionTheCounterRunsAndNothingIsSent) {
  login();
  player.breaksOn = false;
  player.awaitingFirstPosition = true;
  steer(0, 1);
  for (int frame = 0; frame < 3; ++frame) player.move();
  EXPECT_EQ(player.reportCounter, 3);
  player.move();
  EXPECT_EQ(player.reportCounter, 0) << "reset in the fourth frame anyway";
  EXPECT_TRUE(sentFrames().empty());
}

TEST_F(Movement, KeepsThePreviousFramesPosition) {
  steer(0, 4);
  player.move();
  EXPECT_EQ(player.lastPosition, (Vector{50000, 50000}));
  EXPECT_EQ(player.position, (Vector{50000, 50300}));
}

struct EdgeCase {
  Vector from, velocity, to, after;
};

class MovementEdge : public Movement, public testing::WithParamInterface<EdgeCase> {};

TEST_P(MovementEdge, Q094PlacesThePlayerFarInside) {
  const EdgeCase& edge = GetParam();
  player.powerups[turboSlot].active = true;  // no clamp
  steer(0, 0);                               // the velocity stays
  player.position = edge.from;
  player.velocity = edge.velocity;
  player.move();
  EXPECT_EQ(player.position, edge.to);
  EXPECT_EQ(player.velocity, edge.after);
}

INSTANTIATE_TEST_SUITE_P(Edges, MovementEdge,
                         testing::Values(EdgeCase{{5, 500}, {-6, 10}, {1000, 510}, {6, 10}},
                                         EdgeCase{{99995, 500}, {6, 10}, {99000, 510}, {-6, 10}},
                                         EdgeCase{{500, 5}, {10, -6}, {510, 1000}, {10, 6}},
                                         EdgeCase{{500, 99995}, {10, 6}, {510, 99000}, {10, -6}},
                                         EdgeCase{{5, 5}, {-6, -7}, {1000, 1000}, {6, 7}},
                                         EdgeCase{{99995, 5}, {6, -7}, {99000, 1000}, {-6, 7}},
                                         EdgeCase{{5, 99995}, {-6, 7}, {1000, 99000}, {6, -7}},
                                         EdgeCase{{99995, 99995}, {6, 7}, {99000, 99000}, {-6, -7}},
                                         EdgeCase{{.25F, 500}, {-.5F, 10}, {1000, 510}, {.5F, 10}},
                                         EdgeCase{{500, .25F}, {10, -.5F}, {510, 1000}, {10, .5F}},
                                         EdgeCase{{6, 6}, {-6, -6}, {0, 0}, {-6, -6}},
                                         EdgeCase{{99994, 99994}, {6, 6}, {100000, 100000}, {6, 6}}));

TEST_F(Movement, BounceUnderTheBrakesTurnsTheFlight) {
  player.breaksOn = true;
  player.position = {100, 50000};
  player.velocity = {-300, 0};
  player.move();
  EXPECT_EQ(player.position.x, 1000);
  EXPECT_EQ(player.velocity.x, 297);
  player.move();
  EXPECT_EQ(player.position.x, 1294);
}

TEST_F(Movement, ACanvasWithoutHeightIsAFault) {
  frmMain->canvas.Height = 1;
  EXPECT_THROW(player.move(), RuntimeFault);
}

TEST_F(Movement, LaysNoTail) {
  steer(0, 1);
  for (int frame = 0; frame < 8; ++frame) player.move();
  EXPECT_EQ(player.tailCount(), 0);
}

TEST_F(Movement, InitRespawnAndDeathPutTheBrakesOn) {
  player.breaksOn = false;
  player.init(redPlayer, -1, 7, "Ann");
  EXPECT_TRUE(player.breaksOn);
  player.init(redPlayer, -1, 7, "Ann");
  EXPECT_TRUE(player.breaksOn) << "not toggled off";
  player.breaksOn = false;
  player.setAlive(false);
  EXPECT_TRUE(player.breaksOn);
  player.breaksOn = false;
  player.respawn();
  EXPECT_TRUE(player.breaksOn);
  player.breaksOn = false;
  player.setAlive(true);
  EXPECT_FALSE(player.breaksOn) << "set alive does not touch them";
  player.die();
  EXPECT_FALSE(player.breaksOn) << "nor does a capture";
}

TEST_F(Movement, InitSetsTheStartOfALife) {
  player.kills = 5;
  player.alive = false;
  player.isConnected = false;
  player.speed = 0;
  player.positionReportInterval = 0;
  player.awaitingFirstPosition = false;
  player.powerups[2] = {3, 4, true};
  player.init(bluePlayer, -1, 9, "Bob");
  EXPECT_EQ(player.colour, bluePlayer);
  EXPECT_EQ(player.playerIndex, -1);
  EXPECT_EQ(player.serverNode, 9);
  EXPECT_EQ(player.name, "Bob");
  EXPECT_EQ(player.funds(), 10);
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "10");
  EXPECT_EQ(player.kills, 0);
  EXPECT_TRUE(player.alive);
  EXPECT_TRUE(player.isConnected);
  EXPECT_EQ(player.speed, 300);
  EXPECT_EQ(player.positionReportInterval, 3);
  EXPECT_EQ(player.powerSlotLimit, 10);
  EXPECT_TRUE(player.awaitingFirstPosition);
  EXPECT_EQ(player.powerups[2].count, 0);
  EXPECT_FALSE(player.powerups[2].active);
  EXPECT_EQ(player.powerups[2].timeLeft, 4) << "not touched";
  EXPECT_EQ(modMain::world.particleCount, 150) << "the local player's init makes the field";
}

TEST_F(Movement, OnlyTheLocalPlayersInitCreatesTheField) {
  modMain::world.particleCount = 0;
  modMain::world.opponents.emplace_back().init(yellowPlayer, 0, 8, "Bob");
  EXPECT_EQ(modMain::world.particleCount, 0);
}

TEST_F(Movement, FundsAreRoundedToEvenAndShownOnlyForTheLocalPlayer) {
  player.funds(12.5);
  EXPECT_EQ(player.funds(), 12);
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "12");
  player.funds(1234567.5);
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "1234568");
  player.funds(-0.4);
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "0");
  player.funds(-3.6);
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "-4");
  clsPlayer other;
  other.funds(77);
  EXPECT_EQ(other.funds(), 77);
  EXPECT_EQ(frmMain->lblCredits.Caption.get(), "-4");
}

}  // namespace
}  // namespace kelvora
