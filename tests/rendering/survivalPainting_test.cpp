#include <gtest/gtest.h>

#include "rendering/layers.h"
#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

const Colour tie = RGB(0, 0, 255);

// The canvas's centre, with the local player, is (5722, 4560): pixel (381, 304).
class SurvivalPainting : public PaintTest {
 protected:
  SurvivalPainting() {
    local = &placeLocal();
    modMain::world.survivalMode = true;
    modMain::world.survivalOrigin = {50000, 50000};
  }
  void paint() {
    canvas().Cls();
    modMain::world.debugText.clear();
    local->paintSelf();
  }
  clsPlayer* local;
};

TEST_F(SurvivalPainting, LineConnectsThePlayerToTheStart) {
  local->position = {53000, 50000};
  canvas().DrawWidth = 8;
  modMain::paintSurvival();
  // From 3000 left of the centre, (2722, 4560), pixel 181, to the centre: 201 pixels in one row.
  EXPECT_EQ(countPixels(canvas(), tie), 201);
  EXPECT_EQ(pixelAt(canvas(), 181, 304), tie);
  EXPECT_EQ(pixelAt(canvas(), 381, 304), tie);
  EXPECT_EQ(canvas().ForeColor, tie);
  EXPECT_EQ(canvas().DrawWidth, 1);
}

TEST_F(SurvivalPainting, TheBallLiesOverTheLine) {
  local->position = {53000, 50000};
  paint();
  // The ball's left edge is pixel 357.
  EXPECT_EQ(pixelAt(canvas(), 356, 304), tie);
  EXPECT_EQ(pixelAt(canvas(), 357, 304), spriteOnWhite(0, playerGreen, 0));
}

TEST_F(SurvivalPainting, RecordIsAboveTheOtherLines) {
  local->position = {53000, 54000};
  paint();
  EXPECT_EQ(modMain::world.debugText, "Survival Max Distance: 5000\r\nLocation: 53.000   54.000\r\n");
}

TEST_F(SurvivalPainting, TheRecordNeverDecreases) {
  const struct {
    float x;
    float record;
  } rows[] = {{50500, 500}, {50200, 500}, {49000, 1000}, {50000, 1000}, {51000.5F, 1000.5F}};
  for (const auto& row : rows) {
    local->position = {row.x, 50000};
    paint();
    EXPECT_EQ(modMain::world.survivalMaxDistance, row.record) << row.x;
  }
  EXPECT_TRUE(modMain::world.debugText.starts_with("Survival Max Distance: 1000.5\r\n"));
}

TEST_F(SurvivalPainting, TheStartIsTheWorldsCornerUnlessSet) {
  modMain::world.survivalOrigin = {};
  local->position = {300, 400};
  paint();
  EXPECT_EQ(modMain::world.survivalMaxDistance, 500);
}

TEST_F(SurvivalPainting, Q153MovingWithoutPaintingSetsNoRecord) {
  local->position = {60000, 50000};
  local->move();
  EXPECT_EQ(modMain::world.survivalMaxDistance, 0);
  local->position = {60000, 50000};
  paint();
  EXPECT_EQ(modMain::world.survivalMaxDistance, 10000);
}

TEST_F(SurvivalPainting, DrawsNothingWhileOff) {
  modMain::world.survivalMode = false;
  local->position = {53000, 50000};
  paint();
  EXPECT_EQ(countPixels(canvas(), tie), 0);
  EXPECT_EQ(modMain::world.debugText, "Location: 53.000   50.000\r\n");
  EXPECT_EQ(modMain::world.survivalMaxDistance, 0);
}

TEST_F(SurvivalPainting, OpponentsHaveNoLine) {
  local->position = {53000, 50000};
  clsPlayer& other = placeOpponent(cyanPlayer, 54000, 50000);
  canvas().Cls();
  modMain::world.debugText.clear();
  other.paintSelf();
  EXPECT_EQ(countPixels(canvas(), tie), 0);
  EXPECT_EQ(modMain::world.debugText, "");
  EXPECT_EQ(modMain::world.survivalMaxDistance, 0);
}

TEST_F(SurvivalPainting, GhostsHaveItToo) {
  local->alive = false;
  local->position = {53000, 50000};
  paint();
  EXPECT_EQ(modMain::world.survivalMaxDistance, 3000);
}

}  // namespace
}  // namespace kelvora
