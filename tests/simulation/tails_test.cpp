#include <gtest/gtest.h>

#include <ctime>
#include <vector>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class Tails : public GameTest {
 protected:
  Tails() {
    player.playerIndex = -1;
    player.alive = true;
    player.position = {50000, 50000};
  }
  /// Lays a vertex at (x, 0) for each coordinate.
  void lay(std::initializer_list<int> xs) {
    for (const int x : xs) player.addTail({static_cast<float>(x), 0});
  }
  /// Runs the ageing pass of one painted frame.
  void pass(Millis ms = 0) {
    tick(ms);
    player.paintSelf();
  }
  void expectNumbersAreIndexes() {
    for (std::size_t i = 0; i < player.tails.size(); ++i) {
      EXPECT_EQ(player.tails[i].num(), static_cast<double>(i)) << "vertex " << i;
    }
  }
  std::vector<int> xs() const {
    std::vector<int> result;
    for (const clsTail& vertex : player.tails) result.push_back(static_cast<int>(vertex.getPosition().x));
    return result;
  }
  std::int16_t ageOf(std::size_t index) const { return player.tails[index].getAge(); }

  clsPlayer& player = modMain::world.localPlayer;
};

TEST_F(Tails, NewVertexHasAgeZeroAndItsPosition) {
  lay({1, 2});
  ASSERT_EQ(player.tailCount(), 2);
  EXPECT_EQ(player.tails[1].num(), 1);
  EXPECT_EQ(player.tails[1].getAge(), 0);
  EXPECT_EQ(player.tails[1].getPosition(), (Vector{2, 0}));
  EXPECT_FALSE(player.tails[1].isCharged());
  EXPECT_FALSE(player.tails[1].looped());
}

TEST_F(Tails, KillerAndIsLongChangeNothing) {
  lay({1});
  clsTail& vertex = player.tails[0];
  vertex.killer(true);
  vertex.isLong(true);
  EXPECT_FALSE(vertex.looped());
  EXPECT_FALSE(vertex.isCharged());
  EXPECT_EQ(vertex.getAge(), 0);
}

TEST_F(Tails, IdHasOwnerTimeAndARandomNumber) {
  machine.seconds = 1234.5;
  machine.scriptedDraws = {0.0F, 0.5F, 0.99999994F};
  lay({1, 2, 3});
  EXPECT_EQ(player.tails[0].tailID(), "-1-1234.5-10000");
  EXPECT_EQ(player.tails[1].tailID(), "-1-1234.5-59999");
  EXPECT_EQ(player.tails[2].tailID(), "-1-1234.5-109998");
}

TEST_F(Tails, ADeadPlayerLaysNoTailAndTheOldOneExpires) {
  lay({1, 2});
  player.alive = false;
  lay({3});
  EXPECT_EQ(player.tailCount(), 2);
  pass();
  pass(10);
  for (int step = 0; step < 11; ++step) pass(200);
  EXPECT_EQ(player.tailCount(), 0);
}

TEST_F(Tails, AVertexUnderTheChargedTailStaysCharged) {
  lay({1});
  player.powerups[chargedTailSlot].active = true;
  lay({2});
  player.powerups[chargedTailSlot].active = false;
  lay({3});
  EXPECT_FALSE(player.tails[0].isCharged());
  EXPECT_TRUE(player.tails[1].isCharged());
  EXPECT_FALSE(player.tails[2].isCharged());
  pass();
  pass(20);
  pass(20);
  EXPECT_TRUE(player.tails[1].isCharged());
}

TEST_F(Tails, Q227TheServersEchoGrowsTheLocalTailAndMovesNothing) {
  login(0, 7, 50000, 50000);
  serverSends(wire::msgPosition, {"7", "50000", "50000"});
  EXPECT_EQ(player.tailCount(), 0) << "equal to the position: no vertex";
  serverSends(wire::msgPosition, {"7", "50000", "50100"});
  ASSERT_EQ(player.tailCount(), 1);
  EXPECT_EQ(player.tails[0].getPosition(), (Vector{50000, 50100}));
  EXPECT_EQ(player.position, (Vector{50000, 50000}));
  EXPECT_EQ(player.positionQueueCount(), 0);
  player.breaksOn = false;
  modMain::runFrame();
  EXPECT_EQ(player.tailCount(), 1) << "a frame of the local player lays none";
}

TEST_F(Tails, Q228ADepartedPlayersTailStaysFrozen) {
  login(0, 7, 50000, 50000);
  clsPlayer& bob = modMain::playerAt(join(8, 1, "Bob"));
  bob.addTail({51000, 50000});
  for (int frame = 0; frame < 3; ++frame) {
    modMain::runFrame();
    tick(100);
  }
  const std::int16_t age = bob.tails[0].getAge();
  EXPECT_GT(age, 0);
  serverSends(wire::msgPlayerLeft, {"8"});
  for (int frame = 0; frame < 100; ++frame) {
    modMain::runFrame();
    tick(100);
  }
  ASSERT_EQ(bob.tailCount(), 1) << "ten seconds, where two are a tail's life";
  EXPECT_EQ(bob.tails[0].getAge(), age);
}

TEST_F(Tails, Q101TheFirstPassOnlySetsThePlayersTickAndTheSecondStampsTheVertices) {
  lay({1});
  pass(500);
  EXPECT_EQ(player.lastAgeTick, machine.ticks);
  pass(500);
  EXPECT_EQ(ageOf(0), 0) << "stamped, nothing added";
  pass(500);
  EXPECT_EQ(ageOf(0), 50);
}

TEST_F(Tails, ANewVertexIsStampedInItsFirstStep) {
  lay({1});
  pass();
  pass(100);
  pass(100);
  lay({2});
  pass(100);
  EXPECT_EQ(ageOf(0), 20);
  EXPECT_EQ(ageOf(1), 0);
  pass(100);
  EXPECT_EQ(ageOf(1), 10);
}

TEST_F(Tails, Q101APauseAbove32SecondsCostsNoAge) {
  lay({1});
  pass();
  pass(10);
  pass(100);
  ASSERT_EQ(ageOf(0), 10);
  pass(32001);
  EXPECT_EQ(ageOf(0), 10);
  pass(50);
  EXPECT_EQ(ageOf(0), 15) << "the tick has advanced";
}

TEST_F(Tails, PauseOf32SecondsExpiresTheVertex) {
  lay({1});
  pass();
  pass(10);
  pass(32000);
  EXPECT_EQ(player.tailCount(), 0);
}

TEST_F(Tails, Q102UpToTenMillisecondsWaitForALaterStep) {
  lay({1});
  pass();
  pass(5);
  pass(10);
  EXPECT_EQ(ageOf(0), 0);
  pass(10);
  EXPECT_EQ(ageOf(0), 2) << "20 ms together";
  pass(11);
  EXPECT_EQ(ageOf(0), 3) << "1.1 is rounded to 1 and the rest is lost";
  pass(15);
  EXPECT_EQ(ageOf(0), 5) << "1.5 to even";
  pass(25);
  EXPECT_EQ(ageOf(0), 7) << "2.5 to even";
}

TEST_F(Tails, VertexExpiresAboveAge200) {
  lay({1});
  pass();
  pass(10);
  pass(2000);
  ASSERT_EQ(player.tailCount(), 1);
  EXPECT_EQ(ageOf(0), 200);
  pass(10);
  EXPECT_EQ(player.tailCount(), 1) << "no step yet";
  pass(1);
  EXPECT_EQ(player.tailCount(), 0);
}

TEST_F(Tails, NoSecondPassAtTheSameTick) {
  lay({1});
  pass();
  pass(10);
  pass(100);
  player.lastAgeTick = machine.ticks + 100;
  pass(100);
  EXPECT_EQ(ageOf(0), 10) << "0 ms since the last pass";
}

TEST_F(Tails, Q100TheTimeOfAnExtendedTailCountsWhenItEnds) {
  lay({1, 2});
  pass();
  pass(10);
  pass(1000);
  ASSERT_EQ(ageOf(0), 100);
  const Millis before = player.lastAgeTick;
  player.powerups[extendedTailSlot].active = true;
  for (int step = 0; step < 5; ++step) pass(1000);
  ASSERT_EQ(player.tailCount(), 2);
  EXPECT_EQ(ageOf(0), 100);
  EXPECT_EQ(player.lastAgeTick, before);
  player.powerups[extendedTailSlot].active = false;
  pass(1);
  EXPECT_EQ(player.tailCount(), 0) << "the vertices' own ticks stopped as well: 5001 ms at once";
}

TEST_F(Tails, ShortExtendedTailContinuesAgeingWhereItStopped) {
  lay({1});
  pass();
  pass(10);
  pass(500);
  player.powerups[extendedTailSlot].active = true;
  pass(300);
  EXPECT_EQ(ageOf(0), 50);
  player.powerups[extendedTailSlot].active = false;
  pass(100);
  EXPECT_EQ(ageOf(0), 90);
}

TEST_F(Tails, EmptyTailKeepsTheTickOfTheLastPass) {
  pass(100);
  EXPECT_EQ(player.lastAgeTick, 0);
}

TEST_F(Tails, AnUnpaintedTailDoesNotAge) {
  lay({1});
  pass();
  pass(10);
  tick(5000);
  EXPECT_EQ(player.tailCount(), 1);
  EXPECT_EQ(ageOf(0), 0);
}

TEST_F(Tails, KillTailOfTheOnlyVertexLeavesNone) {
  lay({1});
  player.killTail(0);
  EXPECT_EQ(player.tailCount(), 0);
  lay({2});
  EXPECT_EQ(player.tails[0].num(), 0);
}

TEST_F(Tails, KillTailKeepsOrderAndNumbersAtAnyPosition) {
  for (int cut = 0; cut < 7; ++cut) {
    player.tails.clear();
    lay({0, 1, 2, 3, 4, 5, 6});
    std::vector<int> expected{0, 1, 2, 3, 4, 5, 6};
    expected.erase(expected.begin() + cut);
    player.killTail(cut);
    EXPECT_EQ(xs(), expected) << cut;
    expectNumbersAreIndexes();
    lay({7});
    expectNumbersAreIndexes();
  }
}

TEST_F(Tails, KillTailOfAnUnknownNumberChangesNothing) {
  lay({1, 2});
  for (const double num : {-1.0, 2.0, 0.5, 1e300}) {
    player.killTail(num);
    EXPECT_EQ(xs(), (std::vector<int>{1, 2}));
    expectNumbersAreIndexes();
  }
}

TEST_F(Tails, NumbersAreTheIndexesEvenInAnOpponentsTail) {
  modMain::world.opponents.resize(2);
  modMain::world.opponentCount = 2;
  clsPlayer& opponent = modMain::world.opponents[1];
  opponent.playerIndex = 1;
  opponent.alive = true;
  for (int i = 0; i < 5; ++i) opponent.addTail({static_cast<float>(i), 0});
  opponent.killTail(0);
  opponent.killTail(2);
  opponent.addTail({9, 0});
  ASSERT_EQ(opponent.tailCount(), 4);
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(opponent.tails[i].num(), static_cast<double>(i));
}

TEST_F(Tails, IdsAndNumbersFindEachOther) {
  lay({1, 2, 3});
  EXPECT_EQ(player.getTailID(1), player.tails[1].tailID());
  EXPECT_EQ(player.getTailID(-1), "");
  EXPECT_EQ(player.getTailID(3), "");
  EXPECT_EQ(player.getTailNumByID(player.tails[2].tailID()), 2);
  EXPECT_EQ(player.getTailNumByID("nobody"), -1);
}

TEST_F(Tails, APositionIsFoundByItsExactCoordinates) {
  lay({1, 2, 2});
  EXPECT_EQ(player.getTailNumByPos({2, 0}), 1) << "the first of two";
  EXPECT_EQ(player.getTailNumByPos({2.0001F, 0}), -1);
  EXPECT_EQ(player.getTailNumByPos({2, 1}), -1);
  player.tails.clear();
  EXPECT_EQ(player.getTailNumByPos({2, 0}), -1);
}

// Three vertices of different ages expire in one pass, one of them in the middle. Starting over at the oldest after
// each must leave the others as if stepped once.
TEST_F(Tails, StartingOverAfterARemovalAgesNoVertexTwice) {
  lay({1, 2, 3, 4});
  pass();
  pass(10);
  pass(1500);
  for (std::size_t i = 0; i < 4; ++i) ASSERT_EQ(ageOf(i), 150);
  lay({5, 6});
  pass(100);  // 160; 5 and 6 are stamped
  player.killTail(1);
  pass(405);
  // 160 + round(40.5 to even) = 200: alive. 5 and 6 have 40.
  ASSERT_EQ(xs(), (std::vector<int>{1, 3, 4, 5, 6}));
  pass(20);
  EXPECT_EQ(xs(), (std::vector<int>{5, 6}));
  EXPECT_EQ(ageOf(0), 42);
  EXPECT_EQ(ageOf(1), 42);
  expectNumbersAreIndexes();
}

// A clock that advances by 11 ms with every reading during the pass.
class RunningClock : public HeadlessBackend {
 public:
  Millis tickCount() override { return ticks += 11; }
};

TEST_F(Tails, StartsOverIfTheClockHasMoved) {
  lay({1, 2});
  pass();
  pass(5);
  pass(1000);
  player.tails[0] = clsTail(player.tailBase);  // the first vertex is younger
  player.tails[0].initTail(0, -1, {1, 0});
  pass(900);
  ASSERT_EQ(ageOf(0), 0) << "stamped now";
  ASSERT_EQ(ageOf(1), 190);
  RunningClock clock;
  clock.pictureSource = testPicture;
  clock.path = machine.path;
  clock.ticks = machine.ticks + 109;
  installBackend(&clock);
  player.paintSelf();
  installBackend(&machine);
  ASSERT_EQ(xs(), (std::vector<int>{1}));
  // Readings: the pass 120, the first vertex 131 (13), the second 142 (it expires), the check 153, the first again 164:
  // 33 ms.
  EXPECT_EQ(ageOf(0), 16);
  expectNumbersAreIndexes();
}

// Both the removal and the pass would take minutes if the cost were quadratic.
TEST_F(Tails, AHundredThousandVerticesExpireInOnePass) {
  for (int i = 0; i < 100000; ++i) player.addTail({-90000, 0});
  pass();
  pass(10);
  const std::clock_t begin = std::clock();
  pass(2020);
  const double seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;  // of the processor
  EXPECT_EQ(player.tailCount(), 0);
  EXPECT_LT(seconds, 5);
}

}  // namespace
}  // namespace kelvora
