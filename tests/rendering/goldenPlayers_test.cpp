#include <gtest/gtest.h>

#include <vector>

#include "tests/rendering/goldenPainting.h"

namespace kelvora {
namespace {

class GoldenPlayers : public GoldenPainting {
 protected:
  // The ball's 49 pixels around the centre (5722, 4560) start at 5355 and 4193.
  static constexpr Part ball{357, 280, 49, 49};

  /// An opponent at the centre of the canvas, at a cell of the animation.
  clsPlayer& placeAtCentre(PlayerColour colour, std::int16_t cell) {
    clsPlayer& player = placeOpponent(colour, 50000, 50000);
    player.animFrame = cell;
    return player;
  }
};

TEST_F(GoldenPlayers, TheLivingInEachColourAndCell) {
  std::vector<Picture> pictures;
  for (const PlayerColour colour : playerColours) {
    for (std::int16_t cell = 0; cell < 4; ++cell) {
      stripe();
      placeAtCentre(colour, cell).paintSelf();
      pictures.push_back(cropped(canvas(), ball));
      EXPECT_EQ(pixelAt(canvas(), 357 + 24, 280 + 24), sheetPixel(frmGfx->imgPlayer[colour], 49 * cell + 24, 24));
    }
  }
  expectGolden("players", sideBySide(pictures, 4));
}

TEST_F(GoldenPlayers, TheDeadInEachColourAndCell) {
  const double base = 0;
  std::vector<Picture> pictures;
  for (const PlayerColour colour : playerColours) {
    for (const bool overTail : {false, true}) {
      for (std::int16_t cell = 0; cell < 4; ++cell) {
        canvas().Cls();
        const Colour tail = clsTail(base).getColour(static_cast<PlayerColour>((colour + cell) % 6));
        if (overTail) {
          canvas().ForeColor = tail;
          canvas().DrawWidth = 20;
          canvas().Line(5000, 4560, 6500, 4560);
          canvas().DrawWidth = 1;
        }
        clsPlayer& player = placeAtCentre(colour, cell);
        player.alive = false;
        player.paintSelf();
        pictures.push_back(cropped(canvas(), ball));
        const Colour image = sheetPixel(frmGfx->imgPlayer[colour], 49 * cell + 24, 27);
        EXPECT_EQ(pixelAt(canvas(), 381, 307), laidExchanged(overTail ? tail : Colour{}, {}, image)) << "the middle";
        const Colour rim = sheetPixel(frmGfx->imgPlayer[colour], 49 * cell + 24, 41);
        const Colour grey = sheetPixel(frmGfx->imgPlayerMatte, 49 * cell + 24, 41);
        EXPECT_EQ(pixelAt(canvas(), 381, 321), laidExchanged({}, grey, rim)) << "the ring";
        EXPECT_NE(pixelAt(canvas(), 381, 321), Colour{});
        EXPECT_EQ(pixelAt(canvas(), 357, 304), Colour{}) << "the cell's edge is black";
      }
    }
  }
  expectGolden("ghosts", sideBySide(pictures, 8));
}

TEST_F(GoldenPlayers, TheShield) {
  std::vector<Picture> pictures;
  for (std::int16_t cell = 0; cell < 4; ++cell) {
    stripe();
    clsPlayer& player = placeAtCentre(cyanPlayer, cell);
    player.powerups[shieldSlot].active = true;
    player.paintSelf();
    pictures.push_back(cropped(canvas(), ball));
    const int x = 49 * cell + 24;
    const Colour bare = laid({}, sheetPixel(frmGfx->imgPlayerMatte, x, 1), sheetPixel(frmGfx->imgPlayer[3], x, 1));
    EXPECT_EQ(pixelAt(canvas(), 381, 281),
              laid(bare, sheetPixel(frmGfx->imgShield, x, 49 + 1), sheetPixel(frmGfx->imgShield, x, 1)));
  }
  expectGolden("shield", sideBySide(pictures, 4));
}

TEST_F(GoldenPlayers, TheLaserInEightDirections) {
  const Vector flights[] = {{0, -300}, {200, -200}, {300, 0},  {200, 200},
                            {0, 300},  {-200, 200}, {-300, 0}, {-200, -200}};
  const float draws[] = {0, 0.2F, 0.4F, 0.6F, 0.8F, 0, 0.2F, 0.4F};  // 3 to 7 wide
  std::vector<Picture> pictures;
  for (int i = 0; i < 8; ++i) {
    canvas().Cls();
    clsPlayer& player = placeAtCentre(bluePlayer, 0);
    player.powerups[laserSlot].active = true;
    player.lastPosition = {50000 - flights[i].x, 50000 - flights[i].y};
    machine.scriptedDraws = {draws[i]};
    player.paintSelf();
    pictures.push_back(cropped(canvas(), {381 - 60, 304 - 60, 121, 121}));
  }
  // The last beam goes up and to the left, 5 wide with a core of 2: 50 up is 50 to the left.
  EXPECT_EQ(pixelAt(canvas(), 381 - 50, 304 - 50), RGB(0, 255, 0));
  EXPECT_EQ(pixelAt(canvas(), 381 + 50, 304 + 50), Colour{});
  expectGolden("lasers", sideBySide(pictures, 4));
}

TEST_F(GoldenPlayers, TheArrowsOfEachColour) {
  struct Direction {
    Vector screen;
    int left, top;  // pixels
  };
  // By the arrow's cell: up, right, down, left, then the corners.
  const Direction directions[] = {{{6000, -10}, 400, 0}, {{11455, 3000}, 745, 200}, {{6000, 9130}, 400, 590},
                                  {{-10, 3000}, 0, 200}, {{-10, -10}, 0, 0},        {{11455, -10}, 745, 0},
                                  {{-10, 9130}, 0, 590}, {{11455, 9130}, 745, 590}};
  const Colour under = RGB(96, 96, 160);
  std::vector<Picture> pictures;
  for (const PlayerColour colour : playerColours) {
    for (int cell = 0; cell < 8; ++cell) {
      const auto& [screen, left, top] = directions[cell];
      clearTo(under);
      placeOpponent(colour, 50000 - 5722 + screen.x, 50000 - 4560 + screen.y).paintSelf();
      pictures.push_back(cropped(canvas(), {left, top, 18, 18}));
      EXPECT_EQ(pixelAt(canvas(), left + 9, top + 9),
                laid(under, sheetPixel(frmGfx->imgOpponentArrowMatte, 18 * cell + 9, 9),
                     sheetPixel(frmGfx->imgOpponentArrow[colour], 18 * cell + 9, 9)));
    }
  }
  expectGolden("arrows", sideBySide(pictures, 8));
}

TEST_F(GoldenPlayers, TheRadar) {
  clsPlayer& local = modMain::world.localPlayer;
  local.position = {25000, 50000};
  const Vector places[] = {{10000, 10000}, {50000, 20000}, {90000, 10000}, {75000, 75000}, {100000, 100000}};
  for (std::int16_t i = 0; i < 5; ++i) placeOpponent(static_cast<PlayerColour>(i + 1), places[i].x, places[i].y);
  placeOpponent(yellowPlayer, 50000, 90000).alive = false;
  std::vector<Picture> pictures;
  for (const bool alive : {true, false}) {
    radar().Cls();
    for (clsPlayer& player : modMain::world.opponents) player.paintSelf();
    local.alive = alive;
    local.paintSelf();
    pictures.push_back(cropped(radar(), {0, 0, 117, 93}));
  }
  // The crosshair through (438, 698), column 29 and row 47, now without a dot.
  EXPECT_EQ(pixelAt(radar(), 29, 3), RGB(128, 128, 128));
  EXPECT_EQ(pixelAt(radar(), 29, 47), RGB(128, 128, 128));
  // Yellow at (175, 139) is drawn from (107, 72): pixels 7 to 15 and 5 to 13, so its middle is (11, 9).
  EXPECT_EQ(pixelAt(radar(), 11, 9), sheetPixel(frmGfx->imgRadarBlips, 9 + 4, 4));
  expectGolden("radar", sideBySide(pictures, 1));
}

TEST_F(GoldenPlayers, TheCaptureStripFillsUp) {
  clsPlayer& player = placeAtCentre(greenPlayer, 0);
  const Surface& strip = frmMain->picCaps[2];
  std::vector<Picture> pictures;
  for (const PlayerColour victim : {bluePlayer, redPlayer, purplePlayer, yellowPlayer, cyanPlayer, greenPlayer}) {
    player.receiveCapture(victim);
    pictures.push_back(cropped(strip, {0, 0, 65, 11}));
  }
  EXPECT_EQ(pictures.back().pixels, frmGfx->imgCaps.cells().pixels) << "all six: the whole sheet";
  expectGolden("captures", sideBySide(pictures, 1));
}

}  // namespace
}  // namespace kelvora
