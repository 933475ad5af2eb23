#include <gtest/gtest.h>

#include <array>

#include "base/fault.h"
#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

class TailPainting : public PaintTest {
 protected:
  TailPainting() {
    canvas().BackColor = RGB(0, 0, 0);
    local = &placeLocal();
  }
  /// Adds a vertex at a point of the canvas.
  void lay(double x, double y) {
    local->addTail({static_cast<float>(50000 - 5722 + x), static_cast<float>(50000 - 4560 + y)});
  }
  void paint() {
    canvas().Cls();
    local->paintSelf();
  }
  /// Counts the pixels of a colour in one column.
  int thicknessAt(double x, Colour colour) {
    int count = 0;
    for (int row = 0; row < canvas().pixelHeight(); ++row) {
      count += pixelAt(canvas(), toPixels(x), row) == colour ? 1 : 0;
    }
    return count;
  }
  clsPlayer* local;
};

TEST_F(TailPainting, TheColourDarkensWithTheAge) {
  struct Row {
    PlayerColour colour;
    Colour fresh, aged;
  };
  const Row table[] = {
      {redPlayer, RGB(255, 0, 0), RGB(155, 0, 0)},   {yellowPlayer, RGB(255, 255, 0), RGB(155, 155, 0)},
      {greenPlayer, RGB(0, 255, 0), RGB(0, 155, 0)}, {cyanPlayer, RGB(0, 255, 255), RGB(0, 155, 155)},
      {bluePlayer, RGB(0, 0, 255), RGB(0, 0, 155)},  {purplePlayer, RGB(255, 0, 255), RGB(155, 0, 155)},
      {PlayerColour{6}, RGB(0, 0, 0), RGB(0, 0, 0)}, {PlayerColour{-1}, RGB(0, 0, 0), RGB(0, 0, 0)}};
  lay(100, 100);
  const clsTail& vertex = local->tails[0];
  for (const Row& row : table) EXPECT_EQ(vertex.getColour(row.colour), row.fresh) << row.colour;
  paint();
  tick(10);
  paint();
  tick(1000);
  paint();
  ASSERT_EQ(vertex.getAge(), 100);
  for (const Row& row : table) EXPECT_EQ(vertex.getColour(row.colour), row.aged) << row.colour;
}

TEST_F(TailPainting, AFifthOfTheColourIsLeftAtAgeTwoHundred) {
  lay(100, 100);
  paint();
  tick(10);
  paint();
  tick(2000);
  paint();
  EXPECT_EQ(local->tails[0].getColour(redPlayer), RGB(55, 0, 0));
}

TEST_F(TailPainting, EachVertexIsJoinedToThePreviousOneAndNoneToTheBall) {
  lay(1500, 1500);
  lay(3000, 1500);
  lay(3000, 3000);
  paint();
  const Colour red = RGB(255, 0, 0);
  EXPECT_EQ(pixelAt(canvas(), 2250.0, 1500.0), red);
  EXPECT_EQ(pixelAt(canvas(), 3000.0, 2250.0), red);
  EXPECT_EQ(pixelAt(canvas(), (3000 + 5722) / 2.0, (3000 + 4560) / 2.0), Colour{});
  EXPECT_EQ(pixelAt(canvas(), 2250.0, 2250.0), Colour{}) << "the first and the last are not joined";
}

TEST_F(TailPainting, ATailOfOneVertexDrawsNothing) {
  lay(1500, 1500);
  paint();
  EXPECT_EQ(pixelAt(canvas(), 1500.0, 1500.0), Colour{});
}

TEST_F(TailPainting, Q132OnlyTheNewerEndDecides) {
  lay(1500, 1500);
  lay(-15, 1500);
  lay(1500, 3000);
  paint();
  EXPECT_EQ(pixelAt(canvas(), 750.0, 1500.0), Colour{}) << "newer end off the canvas";
  EXPECT_EQ(pixelAt(canvas(), 742.0, 2250.0), RGB(255, 0, 0)) << "older end off the canvas";
}

TEST_F(TailPainting, AnEndExactlyOnTheEdgeIsOnTheCanvas) {
  lay(1500, 1500);
  lay(0, 1500);
  paint();
  EXPECT_EQ(pixelAt(canvas(), 750.0, 1500.0), RGB(255, 0, 0));
}

TEST_F(TailPainting, SegmentHasTheNewerVertexsColour) {
  lay(1500, 1500);
  paint();
  tick(10);
  paint();
  tick(500);
  lay(3000, 1500);
  paint();
  ASSERT_EQ(local->tails[0].getAge(), 50);
  EXPECT_EQ(pixelAt(canvas(), 1530.0, 1500.0), RGB(255, 0, 0));
}

// Vertex i is i / 10 wide, ties to even, 1 to 30. A separate segment at the top of the canvas is measured for each.
TEST_F(TailPainting, TheWidthGrowsWithTheIndex) {
  const std::array<std::array<int, 2>, 12> table{{{1, 1},
                                                  {14, 1},
                                                  {15, 2},
                                                  {25, 2},
                                                  {26, 3},
                                                  {35, 4},
                                                  {104, 10},
                                                  {105, 10},
                                                  {106, 11},
                                                  {294, 29},
                                                  {295, 30},
                                                  {400, 30}}};
  for (const auto& [index, width] : table) {
    local->tails.clear();
    for (int i = 0; i < index - 1; ++i) lay(-5000, -5000);
    lay(1500, 1500);
    lay(3000, 1500);
    paint();
    EXPECT_EQ(thicknessAt(2250, RGB(255, 0, 0)), width) << "vertex " << index;
    EXPECT_EQ(canvas().DrawWidth, 1);
  }
}

TEST_F(TailPainting, VerticesThatExpireInThisFrameAreNotDrawn) {
  lay(1500, 1500);
  lay(3000, 1500);
  paint();
  tick(10);
  paint();
  tick(2020);
  paint();
  EXPECT_EQ(pixelAt(canvas(), 2250.0, 1500.0), Colour{});
}

TEST_F(TailPainting, Q243AnUnpaintedTailNeitherAgesNorCaptures) {
  // The capture of the opponent waits for the local player's older vertex, which lives for slightly more than 2 s.
  clsPlayer& victim = placeOpponent(cyanPlayer, 10000, 10000);
  lay(1500, 1500);
  lay(3000, 1500);
  paint();
  tick(10);
  paint();
  const Vector corner = local->tails[0].getPosition();
  modMain::addKillerTail(local->serverNode, victim.serverNode, corner.x, corner.y);
  ASSERT_EQ(modMain::world.killerTails.size(), 1U);
  for (int frame = 0; frame < 100; ++frame) {
    tick(100);
    victim.paintSelf();
  }
  EXPECT_EQ(local->tails.size(), 2U) << "ten seconds later";
  EXPECT_EQ(local->tails[0].getAge(), 0);
  EXPECT_TRUE(victim.alive);
  paint();
  EXPECT_TRUE(local->tails.empty());
  EXPECT_FALSE(victim.alive);
}

TEST_F(TailPainting, OpponentsTailsLookTheSame) {
  clsPlayer& other = placeOpponent(cyanPlayer, 50000, 50000);
  local->isConnected = false;
  other.addTail({47000, 47000});
  other.addTail({48500, 47000});
  canvas().Cls();
  other.paintSelf();
  EXPECT_EQ(pixelAt(canvas(), 5722 - 2250.0, 4560 - 3000.0), RGB(0, 255, 255));
}

class ChargedArc : public TailPainting {
 protected:
  /// A charged segment from (x1, y1) to (x2, y2) of the canvas.
  void layCharged(double x1, double y1, double x2, double y2) {
    machine.scriptedDraws = {0, 0};  // the two ids
    lay(x1, y1);
    lay(x2, y2);
    local->tails[1].isCharged(true);
  }
  /// Scripts the draws of one stroke: distance and sign on both axes. A sign draw below .4999 is a minus.
  void stroke(float dx, float signX, float dy, float signY) {
    for (const float draw : {dx, signX, dy, signY}) machine.scriptedDraws.push_back(draw);
  }
};

TEST_F(ChargedArc, FourStrokesFromTheLeftEndWhiteToGrey) {
  layCharged(1500, 3000, 6000, 3000);
  machine.scriptedDraws.push_back(0.5F);  // the argument 3000 is positive, so the outer draw is a new number
  // Int(.5 * 500) + 10 = 260, always to the right and up. The outer draw comes from the generator and is below 1.
  for (int i = 0; i < 4; ++i) stroke(0.5F, 0.9F, 0.5F, 0.1F);
  paint();
  const int greys[] = {255, 195, 135, 75};
  for (int i = 0; i < 4; ++i) {
    const double x = 1500 + 260 * i + 130;
    const double y = 3000 - 260 * i - 130;
    const int grey = greys[i];
    EXPECT_EQ(pixelAt(canvas(), x, y), RGB(grey, grey, grey)) << "stroke " << i;
  }
  EXPECT_EQ(pixelAt(canvas(), 1500 + 260 * 4 + 60.0, 3000 - 260 * 4 - 60.0), Colour{}) << "no fifth";
}

TEST_F(ChargedArc, TheLeftEndHasTheSmallerX) {
  layCharged(6000, 3000, 1500, 3000);
  machine.scriptedDraws.push_back(0.5F);
  stroke(0.9F, 0.1F, 0.9F, 0.9F);  // 460 to the left and down
  for (int i = 0; i < 3; ++i) stroke(0, 0.9F, 0, 0.9F);
  paint();
  EXPECT_EQ(pixelAt(canvas(), 1500 - 230.0, 3000 + 230.0), RGB(255, 255, 255));
}

TEST_F(ChargedArc, Q130TheStartIsTheLeftEndOrOneUnitBesideIt) {
  // With an inner draw of 0 the argument is 0, which repeats the generator's last number, always below 1.
  layCharged(1500, 1500, 6000, 6000);
  machine.scriptedDraws.push_back(0);
  stroke(0.5F, 0.9F, 0.5F, 0.1F);
  for (int i = 0; i < 3; ++i) stroke(0, 0.9F, 0, 0.9F);
  paint();
  EXPECT_EQ(pixelAt(canvas(), 1500 + 130.0, 1500 - 130.0), RGB(255, 255, 255)) << "the left end, not along the segment";
}

// The segment falls 6000 over one unit across, so a start next to its left end at 1500.75 is far from it: 1501 is a
// quarter of a unit further, 1500 below the end at 3000.
TEST_F(ChargedArc, TheStartLiesOnTheSegmentsLine) {
  layCharged(1500.75, 3000, 1501.75, 9000);
  // An argument of 0 repeats the generator's last number. One from .25 to 1 makes the start 1501.
  while (machine.generator.next() < 0.25F) {
  }
  machine.scriptedDraws.push_back(0);
  stroke(0.5F, 0.9F, 0.5F, 0.1F);  // 260 to the right and up
  for (int i = 0; i < 3; ++i) stroke(0, 0.9F, 0, 0.9F);
  paint();
  EXPECT_EQ(pixelAt(canvas(), 1501 + 130.0, 4500 - 130.0), RGB(255, 255, 255));
}

TEST_F(ChargedArc, Q130ANegativeArgumentRestartsTheGenerator) {
  // The generator's next number after an arc whose right end is at x on the canvas.
  const auto numberAfter = [this](float x) {
    machine.generator.randomize(1);
    machine.scriptedDraws = {0.5F};
    for (int i = 0; i < 4; ++i) stroke(0, 0.9F, 0, 0.9F);
    const float left = 50000 - 5722;
    local->paintChargedArc({left - 3000, 50000}, {left + x, 50000});
    return machine.generator.next();
  };
  RandomGenerator walking;
  walking.randomize(1);
  walking.next();
  EXPECT_EQ(numberAfter(1000), walking.next()) << "a positive argument takes the next number";
  RandomGenerator restarted;
  restarted.next(-500.0F);
  EXPECT_EQ(numberAfter(-1000), restarted.next()) << ".5 * -1000";
}

TEST_F(ChargedArc, AVerticalSegmentIsShiftedByOneUnit) {
  layCharged(3000, 1500, 3000, 6000);
  machine.scriptedDraws.push_back(0.5F);
  stroke(0.5F, 0.9F, 0.5F, 0.9F);
  for (int i = 0; i < 3; ++i) stroke(0, 0.9F, 0, 0.9F);
  paint();
  // The newer end moves to 3001, so the left end is the older one at (3000, 1500). One unit to the right is 4500 down.
  EXPECT_EQ(pixelAt(canvas(), 3000 + 130.0, 1500 + 130.0), RGB(255, 255, 255));
}

TEST_F(ChargedArc, Q303ASlopeBeyondSinglePrecisionIsAFault) {
  // One unit to the right of the canvas's centre and far down: the offset is 5722 times the height, and 3.4028E+38 is
  // the largest single.
  const Vector centre{50000, 50000};
  local->paintChargedArc(centre, {50001, 5.94E34F});
  EXPECT_THROW(local->paintChargedArc(centre, {50001, 5.95E34F}), RuntimeFault);
  // A quarter of a unit to each side of the canvas's left border, slope 6E+38 and offset 1.5E+38: a start at 0 is fine,
  // one at -1 overflows. The outer draw decides.
  const auto paintWith = [&](float outer) {
    for (float seed = 1;; ++seed) {
      machine.generator.randomize(seed);
      RandomGenerator copy = machine.generator;
      if ((copy.next() < 0.25F) == (outer < 0.25F)) break;
    }
    machine.scriptedDraws = {0.5F};
    for (int i = 0; i < 4; ++i) stroke(0, 0.9F, 0, 0.9F);
    local->paintChargedArc({44277.75F, 50000}, {44278.25F, 3E38F});
  };
  paintWith(0.5F);
  EXPECT_THROW(paintWith(0.1F), RuntimeFault);
}

class VertexOfSlotZero : public TailPainting {
 protected:
  /// Lays vertices before the first login, when the local player counts as slot 0.
  void layForSlotZero(int count) {
    local->playerIndex = 0;
    for (int i = 0; i < count; ++i) lay(1500 + 1500 * i, 1500);
    local->playerIndex = -1;
    paint();
    tick(11);
    paint();
  }
  void ageBy(int units) {
    tick(units * 10 + 1);  // exactly 10 ms would be no step
    paint();
  }
};

TEST_F(VertexOfSlotZero, Q300IsNotRemovedAndFaultsWhenDarkerThanBlack) {
  placeOpponent(yellowPlayer, 90000, 90000);
  layForSlotZero(2);
  ageBy(255);
  ASSERT_EQ(local->tailCount(), 2) << "an ordinary vertex expires above 200";
  EXPECT_EQ(local->tails[1].getAge(), 255);
  EXPECT_EQ(local->tails[1].getColour(redPlayer), RGB(0, 0, 0));
  EXPECT_THROW(ageBy(1), RuntimeFault);
}

TEST_F(VertexOfSlotZero, Q300AloneIsNotDrawnAndFaultsWhenItsAgeOverflows) {
  placeOpponent(yellowPlayer, 90000, 90000);
  layForSlotZero(1);
  for (int i = 0; i < 10; ++i) ageBy(3199);
  ageBy(777);
  EXPECT_EQ(local->tails[0].getAge(), 32767);
  EXPECT_THROW(ageBy(1), RuntimeFault);
}

TEST_F(VertexOfSlotZero, Q300RemovesThatOfSlotZeroWithItsNumber) {
  clsPlayer& bob = placeOpponent(yellowPlayer, 90000, 90000);
  for (const float x : {1.0F, 2.0F, 3.0F}) bob.addTail({90000 + x, 90000});
  layForSlotZero(1);
  bob.killTail(0);
  ageBy(201);
  ASSERT_EQ(bob.tailCount(), 1) << "the first of two";
  EXPECT_EQ(bob.tails[0].getPosition().x, 90003);
}

TEST_F(ChargedArc, AnUnchargedSegmentHasNoLightningAndDrawsNoNumbers) {
  machine.scriptedDraws = {0, 0};
  lay(1500, 3000);
  lay(6000, 3000);
  machine.scriptedDraws = {0.25F};
  paint();
  EXPECT_EQ(machine.scriptedDraws.size(), 1U);
}

}  // namespace
}  // namespace kelvora
