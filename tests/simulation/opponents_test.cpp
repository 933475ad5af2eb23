#include <gtest/gtest.h>

#include <vector>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

// The local player is at (50000, 50000), so the canvas shows 44278 to 55723 across and 45440 to 54560 down.
class Opponents : public GameTest {
 protected:
  Opponents() {
    login();
    modMain::world.opponents.emplace_back().init(yellowPlayer, 0, 8, "Bob");
    modMain::world.opponentCount = 1;
    other().awaitingFirstPosition = false;
    other().position = {50000, 50000};
  }
  clsPlayer& other() { return modMain::world.opponents[0]; }
  std::vector<Vector> tailPoints() {
    std::vector<Vector> points;
    for (const clsTail& vertex : other().tails) points.push_back(vertex.getPosition());
    return points;
  }
};

TEST_F(Opponents, TheFirstPositionPlacesWithoutGlideOrTail) {
  other().init(yellowPlayer, 0, 8, "Bob");
  other().position = {};
  serverSends(wire::msgPosition, {"8", "48000", "49000"});
  EXPECT_EQ(other().position, (Vector{48000, 49000}));
  EXPECT_FALSE(other().awaitingFirstPosition);
  EXPECT_EQ(other().positionQueueCount(), 0);
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{48000, 49000}));
  EXPECT_EQ(other().tailCount(), 0);
}

TEST_F(Opponents, PositionsOutsideTheWorldAreDroppedButItsEdgesAccepted) {
  for (const Vector outside : {Vector{-1, 5}, Vector{5, -1}, Vector{100001, 5}, Vector{5, 100001}}) {
    other().queuePosition(outside);
  }
  EXPECT_EQ(other().positionQueueCount(), 0);
  other().queuePosition({0, 0});
  other().queuePosition({100000, 100000});
  EXPECT_EQ(other().positionQueueCount(), 2);
}

TEST_F(Opponents, ADroppedFirstPositionLeavesThePlayerWaiting) {
  other().awaitingFirstPosition = true;
  other().queuePosition({-1, 0});
  EXPECT_TRUE(other().awaitingFirstPosition);
}

TEST_F(Opponents, StandsStillWithAnEmptyQueueAtAnyVelocity) {
  other().velocity = {20, 30};
  other().lastPosition = {1, 1};
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{50000, 50000}));
  EXPECT_EQ(other().lastPosition, (Vector{1, 1}));
  EXPECT_EQ(other().velocity, (Vector{20, 30}));
}

TEST_F(Opponents, GlidesASeventhOfTheWayPerFrame) {
  other().queuePosition({50700, 51400});
  other().moveAsOpponent();
  EXPECT_EQ(other().velocity, (Vector{100, 200}));
  EXPECT_EQ(other().lastPosition, (Vector{50000, 50000}));
  EXPECT_EQ(other().position, (Vector{50100, 50200}));
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{50200, 50400})) << "the same step, not a new seventh";
  EXPECT_EQ(tailPoints(), (std::vector<Vector>{{50100, 50200}, {50200, 50400}}));
}

TEST_F(Opponents, ATargetNearerThan500IsReachedAtOnce) {
  other().queuePosition({50300, 50390});  // 492
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{50300, 50390}));
  EXPECT_EQ(tailPoints(), (std::vector<Vector>{{50300, 50390}}));
  EXPECT_EQ(other().positionQueueCount(), 0);
}

TEST_F(Opponents, GlidesToATargetExactly500Away) {
  other().queuePosition({50300, 50400});
  other().moveAsOpponent();
  EXPECT_EQ(other().positionQueueCount(), 1);
  EXPECT_NEAR(other().position.x, 50042.857, 0.01);
  EXPECT_NEAR(other().position.y, 50057.143, 0.01);
}

TEST_F(Opponents, GlidesToTheNextTargetInTheFrameOfAnArrival) {
  other().queuePosition({50100, 50100});
  other().queuePosition({50800, 51500});
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{50200, 50300})) << "arrived, then a seventh of (700, 1400)";
  EXPECT_EQ(tailPoints(), (std::vector<Vector>{{50100, 50100}, {50200, 50300}}));
  EXPECT_EQ(other().positionQueueCount(), 1);
}

TEST_F(Opponents, ATargetAbove10000JumpsAndLaysOneVertex) {
  other().position = {40000, 40000};
  other().queuePosition({50000, 50000});
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{50000, 50000}));
  EXPECT_EQ(tailPoints(), (std::vector<Vector>{{50000, 50000}}));
  EXPECT_EQ(other().positionQueueCount(), 0);
}

TEST_F(Opponents, GlidesToATargetExactly10000Away) {
  other().position = {44000, 58000};
  other().queuePosition({50000, 50000});
  other().moveAsOpponent();
  EXPECT_EQ(other().positionQueueCount(), 1);
  EXPECT_EQ(other().velocity.x, 300) << "857 limited";
  EXPECT_NEAR(other().velocity.y, -1142.857, 0.001);
}

TEST_F(Opponents, Q115AJumpKeepsTheStepForTheNextTarget) {
  other().queuePosition({50700, 51400});
  other().moveAsOpponent();
  ASSERT_TRUE(other().steering);
  other().position = {20000, 20000};
  other().queuePosition({46000, 46000});
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{50700, 51400})) << "the jump";
  EXPECT_TRUE(other().steering);
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{50800, 51600})) << "away from the target, with the old step";
}

TEST_F(Opponents, OffTheCanvasTheWholeQueueIsReachedInOneFrame) {
  other().queuePosition({10000, 10000});
  other().queuePosition({10300, 10000});
  other().queuePosition({30000, 90000});
  other().steering = true;
  other().velocity = {5, 5};
  other().moveAsOpponent();
  EXPECT_EQ(other().positionQueueCount(), 0);
  EXPECT_EQ(other().position, (Vector{30000, 90000}));
  EXPECT_EQ(tailPoints(), (std::vector<Vector>{{10000, 10000}, {10300, 10000}, {30000, 90000}}));
  EXPECT_FALSE(other().steering);
}

TEST_F(Opponents, TheReplayEndsAtTheFirstPointOnTheCanvas) {
  other().queuePosition({44277, 50000});  // one unit left of the canvas
  other().queuePosition({44278, 50000});  // its edge
  other().moveAsOpponent();
  EXPECT_EQ(tailPoints(), (std::vector<Vector>{{44277, 50000}, {44278, 50000}})) << "replayed, then an arrival";
  EXPECT_EQ(other().positionQueueCount(), 0);
}

TEST_F(Opponents, Q110AStepIsNeverZero) {
  other().queuePosition({50000, 50700});
  other().moveAsOpponent();
  EXPECT_EQ(other().velocity, (Vector{1, 100}));
  EXPECT_EQ(other().position, (Vector{50001, 50100}));
  other().position = {50000, 50000};
  other().steering = false;
  other().positionQueue = {{50700, 50000}};
  other().moveAsOpponent();
  EXPECT_EQ(other().velocity, (Vector{100, 1}));
}

TEST_F(Opponents, Q110AVelocityWithAZeroInItIsReplaced) {
  other().queuePosition({50700, 51400});
  other().moveAsOpponent();
  serverSends(wire::msgVelocity, {"8", "0", "250"});
  EXPECT_EQ(other().velocity, (Vector{0, 250}));
  other().moveAsOpponent();
  EXPECT_NEAR(other().velocity.x, 600 / 7.0, 0.01) << "a new step from (50100, 50200)";
  EXPECT_NEAR(other().velocity.y, 1200 / 7.0, 0.01);
}

TEST_F(Opponents, AReceivedVelocityReplacesTheStepWhileGliding) {
  other().queuePosition({52100, 52100});
  other().moveAsOpponent();
  serverSends(wire::msgVelocity, {"8", "-20", "30"});
  other().moveAsOpponent();
  EXPECT_EQ(other().velocity, (Vector{-20, 30}));
  EXPECT_EQ(other().position, (Vector{50280, 50330}));
}

TEST_F(Opponents, Q111AtATimeScaleAbove1TheGlideGainsSpeed) {
  modMain::world.frameTime = 15;
  other().queuePosition({50000 - 3500, 50000 - 1400});
  other().moveAsOpponent();
  EXPECT_EQ(other().velocity, (Vector{-750, -300}));
  EXPECT_EQ(other().position, (Vector{49250, 49700}));
  other().moveAsOpponent();
  EXPECT_EQ(other().velocity, (Vector{-1125, -450}));
}

TEST_F(Opponents, Q112OnlyPositiveStepsAreLimited) {
  other().queuePosition({52800, 47200});
  other().moveAsOpponent();
  EXPECT_EQ(other().velocity, (Vector{300, -400}));
  other().steering = false;
  other().position = {50000, 50000};
  other().positionQueue = {{47200, 52800}};
  other().moveAsOpponent();
  EXPECT_EQ(other().velocity, (Vector{-400, 300}));
}

TEST_F(Opponents, Q113TheVertexIsLaidBeforeTheEdgeStops) {
  modMain::world.localPlayer.position = {1000, 1000};
  other().position = {100, 200};
  other().queuePosition({900, 1500});
  other().steering = true;
  other().velocity = {-150, -250};
  other().moveAsOpponent();
  EXPECT_EQ(tailPoints(), (std::vector<Vector>{{-50, -50}}));
  EXPECT_EQ(other().position, (Vector{0, 0})) << "on the edge itself";
  EXPECT_EQ(other().velocity, (Vector{150, 250}));
}

TEST_F(Opponents, FarEdgesStopOpponentsToo) {
  modMain::world.localPlayer.position = {99000, 99000};
  other().position = {99900, 99800};
  other().queuePosition({99000, 98000});
  other().steering = true;
  other().velocity = {150, 250};
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{100000, 100000}));
  EXPECT_EQ(other().velocity, (Vector{-150, -250}));
}

// A step to one unit beyond an edge is stopped there. A step to the edge itself is not.
TEST_F(Opponents, WorldIncludesItsEdge) {
  const auto stepTo = [this](Vector point, Vector velocity) {
    modMain::world.localPlayer.position = point;
    other().position = {point.x - velocity.x, point.y - velocity.y};
    other().positionQueue = {{point.x < 50000 ? 2000.0F : 98000.0F, point.y < 50000 ? 2000.0F : 98000.0F}};
    other().steering = true;
    other().velocity = velocity;
    other().moveAsOpponent();
  };
  stepTo({-1, -1}, {-10, -20});
  EXPECT_EQ(other().position, (Vector{0, 0}));
  EXPECT_EQ(other().velocity, (Vector{10, 20}));
  stepTo({-.25F, -.25F}, {-10, -20});
  EXPECT_EQ(other().position, (Vector{0, 0}));
  stepTo({0, 0}, {-10, -20});
  EXPECT_EQ(other().position, (Vector{0, 0}));
  EXPECT_EQ(other().velocity, (Vector{-10, -20}));
  stepTo({100001, 100001}, {10, 20});
  EXPECT_EQ(other().position, (Vector{100000, 100000}));
  EXPECT_EQ(other().velocity, (Vector{-10, -20}));
  stepTo({100000, 100000}, {10, 20});
  EXPECT_EQ(other().position, (Vector{100000, 100000}));
  EXPECT_EQ(other().velocity, (Vector{10, 20}));
}

TEST_F(Opponents, ADeadOpponentGlidesWithoutATail) {
  other().setAlive(false);
  other().queuePosition({50700, 51400});
  other().moveAsOpponent();
  EXPECT_EQ(other().position, (Vector{50100, 50200}));
  EXPECT_EQ(other().tailCount(), 0);
}

TEST_F(Opponents, APositionForAnUnknownNodeGoesToSlotZero) {
  serverSends(wire::msgPosition, {"99", "50100", "50000"});
  EXPECT_EQ(other().positionQueueCount(), 1);
}

TEST_F(Opponents, APingIsAnsweredWithTheTimeAndAPositionReport) {
  machine.seconds = 4000.5;
  serverSends(wire::msgPing, {"1000"});
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{133, {"4000.5"}}, {131, {"50000", "50000"}}}));
  EXPECT_EQ(modMain::world.localPlayer.clockOffset, 3000.5F);
  EXPECT_EQ(modMain::world.localPlayer.pingTick, machine.ticks);
}

TEST_F(Opponents, APingWhileWaitingForTheFirstPositionSendsNoReport) {
  modMain::world.localPlayer.awaitingFirstPosition = true;
  serverSends(wire::msgPing, {"0"});
  EXPECT_EQ(sentFrames(), (std::vector<WireMessage>{{133, {"43200"}}}));
}

TEST_F(Opponents, APingBeforeTheLoginDoesNothing) {
  modMain::world.localPlayer.isConnected = false;
  modMain::world.localPlayer.pingTick = 5;
  serverSends(wire::msgPing, {"1000"});
  EXPECT_TRUE(sentFrames().empty());
  EXPECT_EQ(modMain::world.localPlayer.pingTick, 5);
}

TEST_F(Opponents, ALatencyReportShowsBothNumbers) {
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "0") << "until the first report";
  serverSends(wire::msgPing, {"1000"});
  tick(37);
  serverSends(wire::msgLatencyReport, {"41"});
  EXPECT_EQ(modMain::world.localPlayer.getLag(), 37);
  EXPECT_EQ(modMain::world.localPlayer.reportedLag, 41);
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "37/41");
}

}  // namespace
}  // namespace kelvora
