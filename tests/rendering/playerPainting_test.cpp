#include <gtest/gtest.h>

#include <vector>

#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

class PlayerPainting : public PaintTest {
 protected:
  PlayerPainting() { local = &placeLocal(); }
  Colour centre() { return pixelAt(canvas(), 5722.0, 4560.0); }
  void paint(clsPlayer& player) {
    canvas().Cls();
    radar().Cls();
    player.paintSelf();
  }
  /// The cell of the ball's animation after this many more paints.
  int cellAfter(clsPlayer& player, int paints) {
    for (int i = 0; i < paints; ++i) player.paintSelf();
    return player.animFrame;
  }
  clsPlayer* local;
};

TEST_F(PlayerPainting, TheBallHasTheColoursSheetAndTheSharedMatte) {
  for (const PlayerColour colour : playerColours) {
    local->colour = colour;
    local->animTick = 0;
    paint(*local);
    EXPECT_EQ(centre(), spriteOnWhite(0, playerGreen + colour, 0)) << colour;
  }
}

TEST_F(PlayerPainting, EachCellShowsItsOwnPartOfTheSheet) {
  for (std::int16_t cell = 0; cell < 4; ++cell) {
    local->animFrame = cell;
    local->animTick = 0;
    paint(*local);
    EXPECT_EQ(centre(), spriteOnWhite(cell, playerGreen, cell));
  }
}

TEST_F(PlayerPainting, BallIsCentred) {
  paint(*local);
  // 735 wide from 5722 - 367 = 5355, pixel 357, and from 4560 - 367 = 4193, nearest to pixel 280; 49 pixels.
  EXPECT_EQ(pixelAt(canvas(), 356, 300), white);
  EXPECT_NE(pixelAt(canvas(), 357, 300), white);
  EXPECT_NE(pixelAt(canvas(), 405, 300), white);
  EXPECT_EQ(pixelAt(canvas(), 406, 300), white);
  EXPECT_EQ(pixelAt(canvas(), 380, 279), white);
  EXPECT_NE(pixelAt(canvas(), 380, 280), white);
  EXPECT_NE(pixelAt(canvas(), 380, 328), white);
  EXPECT_EQ(pixelAt(canvas(), 380, 329), white);
}

TEST_F(PlayerPainting, LaterSpriteIsWholeWithoutMixing) {
  clsPlayer& other = placeOpponent(purplePlayer, 50000 + 300, 50000);
  canvas().Cls();
  local->paintSelf();
  other.paintSelf();
  EXPECT_EQ(pixelAt(canvas(), 5722.0 + 200, 4560.0), RGB(16, playerGreen + 5, 16));
  EXPECT_EQ(pixelAt(canvas(), 5722.0 - 300, 4560.0), RGB(16, playerGreen, 16));
}

TEST_F(PlayerPainting, ASpriteOverTheEdgeIsClipped) {
  clsPlayer& other = placeOpponent(purplePlayer, 50000 - 5722, 50000);
  paint(other);
  EXPECT_EQ(pixelAt(canvas(), 0, 304), RGB(16, playerGreen + 5, 16));
  EXPECT_EQ(pixelAt(canvas(), 25, 304), white);
}

TEST_F(PlayerPainting, Q133TheShieldsMattesAreInTheRowAtTheBallsHeight) {
  local->powerups[shieldSlot].active = true;
  local->animFrame = 2;
  paint(*local);
  EXPECT_EQ(centre(), spriteOnWhite(2, shieldGreen, 2));
  frmGfx->imgShield.Height = 100;  // never read
  local->animFrame = 2;
  local->animTick = 0;
  paint(*local);
  EXPECT_EQ(centre(), spriteOnWhite(2, shieldGreen, 2));
}

TEST_F(PlayerPainting, Q129AGhostHasTheOperationsExchangedAndNoShield) {
  local->alive = false;
  local->powerups[shieldSlot].active = true;
  local->animFrame = 1;
  paint(*local);
  EXPECT_EQ(centre(), exchangedOnWhite(1, playerGreen));
  canvas().BackColor = RGB(0, 0, 0);
  local->animTick = 0;
  paint(*local);
  EXPECT_EQ(centre(), Colour{}) << "(black OR the matte's blue) AND an image without blue";
}

TEST_F(PlayerPainting, ADeadOpponentOnTheCanvasIsAGhostToo) {
  clsPlayer& other = placeOpponent(cyanPlayer, 50000, 50000);
  other.alive = false;
  paint(other);
  EXPECT_EQ(centre(), exchangedOnWhite(0, playerGreen + 3));
}

TEST_F(PlayerPainting, Q244TheAnimationRunsForwardAndBackAndShowsItsEndsTwice) {
  std::vector<int> cells{local->animFrame};
  for (int change = 0; change < 11; ++change) cells.push_back(cellAfter(*local, 10));
  EXPECT_EQ(cells, (std::vector<int>{0, 1, 2, 3, 3, 2, 1, 0, 0, 1, 2, 3}));
}

TEST_F(PlayerPainting, ACellLastsTenFramesAtTimeScaleOne) {
  EXPECT_EQ(cellAfter(*local, 9), 0);
  EXPECT_EQ(cellAfter(*local, 1), 1);
}

TEST_F(PlayerPainting, CellsLastShorterAtAHigherTimeScale) {
  modMain::world.frameTime = 25;  // 10 / 2.5 = 4 frames
  EXPECT_EQ(cellAfter(*local, 3), 0);
  EXPECT_EQ(cellAfter(*local, 1), 1);
  modMain::world.frameTime = 100;
  EXPECT_EQ(cellAfter(*local, 1), 2) << "every frame";
  modMain::world.frameTime = 1000;
  EXPECT_EQ(cellAfter(*local, 1), 3);
}

TEST_F(PlayerPainting, Q242AnOffScreenOpponentsAnimationStops) {
  clsPlayer& other = placeOpponent(cyanPlayer, 50000, 50000);
  EXPECT_EQ(cellAfter(other, 14), 1);
  other.position.x = 10000;
  EXPECT_EQ(cellAfter(other, 25), 1);
  EXPECT_EQ(other.animTick, 4);
  other.position.x = 50000;
  EXPECT_EQ(cellAfter(other, 5), 1);
  EXPECT_EQ(cellAfter(other, 1), 2) << "it continues where it stopped";
}

TEST_F(PlayerPainting, AGhostsBallIsAnimatedToo) {
  local->alive = false;
  EXPECT_EQ(cellAfter(*local, 10), 1);
  paint(*local);
  EXPECT_EQ(centre(), exchangedOnWhite(1, playerGreen));
  clsPlayer& other = placeOpponent(cyanPlayer, 50000, 50000);
  other.alive = false;
  EXPECT_EQ(cellAfter(other, 10), 1);
}

// Real controls are never this small. Only then is the centre outside the canvas.
TEST_F(PlayerPainting, LocalBallIsAlwaysPainted) {
  canvas().Width.adopt(-30);
  canvas().Height.adopt(-30);
  local->paintSelf();
  EXPECT_EQ(local->animTick, 1);
  EXPECT_EQ(modMain::world.debugText, "Location: 50.000   50.000\r\n");
  clsPlayer& other = placeOpponent(cyanPlayer, 50000, 50000);
  other.paintSelf();
  EXPECT_EQ(other.animTick, 0) << "off screen at the same position";
}

TEST_F(PlayerPainting, ExactlyInTheCornerAnOpponentIsABall) {
  const Vector corners[] = {{-5722, -4560}, {5723, -4560}, {-5722, 4560}, {5723, 4560}};
  for (const Vector& corner : corners) {
    clsPlayer& other = placeOpponent(greenPlayer, 50000 + corner.x, 50000 + corner.y);
    paint(other);
    EXPECT_EQ(other.animTick, 1) << "painted as one on the canvas";
    EXPECT_EQ(countPixels(canvas(), spriteOnWhite(4, arrowGreen + 2, 4)), 0);
    EXPECT_GT(countPixels(canvas(), spriteOnWhite(0, playerGreen + 2, 0)), 400);
  }
}

struct ArrowRow {
  Vector screen;  // the opponent's position, canvas units
  int frame;      // -1: no arrow
  int left, top;  // pixels
};

class ArrowTable : public PlayerPainting, public testing::WithParamInterface<ArrowRow> {};

TEST_P(ArrowTable, Q138TheArrowIsOnTheEdge) {
  const ArrowRow& row = GetParam();
  clsPlayer& other = placeOpponent(bluePlayer, 50000 - 5722 + row.screen.x, 50000 - 4560 + row.screen.y);
  // The image is larger than the control by one arrow, so that an arrow just beyond its right or lower edge would show.
  canvas().resize(763 + 18, 608 + 18);
  paint(other);
  if (row.frame < 0) {
    EXPECT_EQ(other.animTick, 1) << "a ball";
    return;
  }
  const Colour arrow = spriteOnWhite(row.frame, arrowGreen + 4, row.frame);
  EXPECT_EQ(countPixels(canvas(), arrow), 18 * 18) << "one whole arrow";
  EXPECT_EQ(pixelAt(canvas(), row.left, row.top), arrow);
  EXPECT_EQ(pixelAt(canvas(), row.left + 17, row.top + 17), arrow);
}

// An arrow is 270 twips, 18 pixels; the canvas 763 by 608 pixels. W - 270 = 11175, pixel 745; H - 270 = 8850, pixel
// 590.
INSTANTIATE_TEST_SUITE_P(Places, ArrowTable,
                         testing::Values(ArrowRow{{-10, 3000}, 3, 0, 200}, ArrowRow{{-10, -10}, 4, 0, 0},
                                         ArrowRow{{-10, 9130}, 6, 0, 590}, ArrowRow{{11455, 3000}, 1, 745, 200},
                                         ArrowRow{{11455, -10}, 5, 745, 0}, ArrowRow{{11455, 9130}, 7, 745, 590},
                                         ArrowRow{{6000, -10}, 0, 400, 0}, ArrowRow{{6000, 9130}, 2, 400, 590},
                                         ArrowRow{{6000, 3000}, -1, 0, 0}));

// A coordinate exactly on the canvas's edge counts as inside: these are on an edge but in no corner.
INSTANTIATE_TEST_SUITE_P(Bounds, ArrowTable,
                         testing::Values(ArrowRow{{0, -10}, 0, 0, 0}, ArrowRow{{11445, -10}, 0, 763, 0},
                                         ArrowRow{{0, 9130}, 2, 0, 590}, ArrowRow{{11445, 9130}, 2, 763, 590},
                                         ArrowRow{{-10, 0}, 3, 0, 0}, ArrowRow{{-10, 9120}, 3, 0, 608},
                                         ArrowRow{{11455, 0}, 1, 745, 0}, ArrowRow{{11455, 9120}, 1, 745, 608}));

TEST_F(PlayerPainting, TheArrowHasTheOpponentsColour) {
  for (const PlayerColour colour : playerColours) {
    paint(placeOpponent(colour, 10000, 50000));
    EXPECT_EQ(countPixels(canvas(), spriteOnWhite(3, arrowGreen + colour, 3)), 18 * 18);
  }
}

TEST_F(PlayerPainting, ADeadOpponentOffTheCanvasHasNeitherArrowNorDot) {
  clsPlayer& other = placeOpponent(cyanPlayer, 10000, 50000);
  other.alive = false;
  paint(other);
  EXPECT_EQ(countPixels(canvas(), white), canvas().pixelWidth() * canvas().pixelHeight());
  EXPECT_EQ(countPixels(radar(), white), radar().pixelWidth() * radar().pixelHeight());
}

// The radar is 1755 by 1397 twips, 117 by 93 pixels.
TEST_F(PlayerPainting, TheRadarShowsTheWholeWorld) {
  clsPlayer& other = placeOpponent(purplePlayer, 40000, 75000);
  paint(other);
  // (702, 1047); a dot of 960 / 7 = 137.14 by 135 starts 68 and 67 earlier: (634, 980), pixel (42, 65), 9 by 9.
  const Colour dot = spriteOnWhite(5, blipGreen, 6);
  EXPECT_EQ(pixelAt(radar(), 42, 65), dot);
  EXPECT_EQ(pixelAt(radar(), 50, 73), dot);
  EXPECT_EQ(pixelAt(radar(), 41, 65), white);
  EXPECT_EQ(pixelAt(radar(), 42, 64), white);
  EXPECT_EQ(pixelAt(radar(), 51, 73), white);
  EXPECT_EQ(pixelAt(radar(), 50, 74), white);
}

// For slot 0, painting the player carries out the captures of the tail, here of the player themselves.
TEST_F(PlayerPainting, TheTailIsPaintedBeforeTheDot) {
  clsPlayer& other = placeOpponent(purplePlayer, 50000, 50000);
  other.addTail({10000, 10000});
  other.addTail({10100, 10000});
  modMain::addKillerTail(other.serverNode, other.serverNode, 10000, 10000);
  paint(other);
  ASSERT_FALSE(other.alive);
  EXPECT_EQ(countPixels(radar(), white), radar().pixelWidth() * radar().pixelHeight()) << "no dot for the dead";
  EXPECT_EQ(centre(), exchangedOnWhite(0, playerGreen + 5));
}

TEST_F(PlayerPainting, EachColourHasItsDot) {
  for (const PlayerColour colour : playerColours) {
    paint(placeOpponent(colour, 50000, 50000));
    EXPECT_EQ(pixelAt(radar(), 877.0, 698.0), spriteOnWhite(colour, blipGreen, 6)) << colour;
  }
}

TEST_F(PlayerPainting, LocalPlayerHasACrosshairEvenWhenDead) {
  local->position = {25000, 50000};
  const Colour grey = RGB(128, 128, 128);
  paint(*local);
  // (438, 698): pixel column 29, row 47.
  EXPECT_EQ(pixelAt(radar(), 29, 5), grey);
  EXPECT_EQ(pixelAt(radar(), 29, 90), grey);
  EXPECT_EQ(pixelAt(radar(), 5, 47), grey);
  EXPECT_EQ(pixelAt(radar(), 110, 47), grey);
  EXPECT_EQ(pixelAt(radar(), 28, 5), white) << "one pixel";
  EXPECT_EQ(pixelAt(radar(), 29, 47), RGB(16, blipGreen, 0)) << "the dot above it: 128 AND the matte's 112 is 0";
  local->alive = false;
  paint(*local);
  EXPECT_EQ(pixelAt(radar(), 29, 5), grey);
  EXPECT_EQ(pixelAt(radar(), 29, 47), grey) << "no dot";
}

TEST_F(PlayerPainting, OpponentsHaveNoCrosshair) {
  paint(placeOpponent(yellowPlayer, 25000, 50000));
  EXPECT_EQ(countPixels(radar(), RGB(128, 128, 128)), 0);
}

TEST_F(PlayerPainting, OnlyTheLocalPlayerPrintsLines) {
  modMain::world.debugText.clear();
  placeOpponent(yellowPlayer, 50000, 50000).paintSelf();
  EXPECT_EQ(modMain::world.debugText, "");
  local->position = {12345.75F, 99999};
  local->breaksOn = true;
  local->paintSelf();
  EXPECT_EQ(modMain::world.debugText, "Location: 12.346   99.999\r\nBreaks on, right-click to release\r\n");
}

}  // namespace
}  // namespace kelvora
