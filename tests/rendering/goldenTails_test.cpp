#include <gtest/gtest.h>

#include "tests/rendering/goldenPainting.h"

namespace kelvora {
namespace {

class GoldenTails : public GoldenPainting {
 protected:
  static void lay(clsPlayer& player, int column, int row) { player.addTail(worldAt(column, row)); }
};

TEST_F(GoldenTails, TheWidthsOfALongTail) {
  clsPlayer& player = placeOpponent(yellowPlayer, 10000, 10000);
  for (int i = 0; i < 320; ++i) lay(player, 20 + 2 * i, 304);
  player.paintSelf();
  // At its newest end, 30 wide from vertex 295 on: including the round end, 15 pixels above and 14 below.
  int width = 0;
  for (int row = 250; row < 350; ++row) width += pixelAt(canvas(), 656, row) == RGB(255, 255, 0) ? 1 : 0;
  EXPECT_EQ(width, 30);
  EXPECT_EQ(pixelAt(canvas(), 30, 303), Colour{}) << "one pixel up to vertex 14";
  EXPECT_EQ(pixelAt(canvas(), 30, 304), RGB(255, 255, 0));
  EXPECT_EQ(pixelAt(canvas(), 30, 305), Colour{});
  expectGolden("tailWidths", canvas(), {10, 284, 680, 40});
}

TEST_F(GoldenTails, LengthsAndAgesInEachColour) {
  // Each frame lasts 20 ms and adds a vertex to every unfinished tail, four pixels to the right and alternately up and
  // down.
  const int lengths[] = {2, 5, 15, 40, 70, 100};
  for (const PlayerColour colour : playerColours) placeOpponent(colour, 10000, 10000);
  for (int frame = 0; frame < 100; ++frame) {
    tick(20);
    for (int colour = 0; colour < 6; ++colour) {
      clsPlayer& player = modMain::world.opponents[static_cast<std::size_t>(colour)];
      if (frame >= 100 - lengths[colour]) lay(player, 700 - 4 * (100 - frame), 100 + 30 * colour + frame % 2 * 6);
      if (frame < 99) player.paintSelf();
    }
  }
  canvas().Cls();
  for (clsPlayer& player : modMain::world.opponents) player.paintSelf();
  // The newest vertex has age 0, the one laid 50 frames earlier 100: blue and purple at the ends of their segments.
  EXPECT_EQ(pixelAt(canvas(), 700 - 4 * 1 - 1, 100 + 30 * 5 + 5), RGB(255, 0, 255));
  EXPECT_EQ(pixelAt(canvas(), 700 - 4 * 51 - 1, 100 + 30 * 5 + 5), RGB(155, 0, 155));
  EXPECT_EQ(pixelAt(canvas(), 700 - 4 * 51 - 1, 100 + 30 * 4 + 5), RGB(0, 0, 155));
  EXPECT_EQ(pixelAt(canvas(), 700 - 4 * 5 - 2, 100 + 3), Colour{}) << "two vertices are one segment";
  expectGolden("tails", canvas(), {290, 90, 420, 180});
}

TEST_F(GoldenTails, AChargedSegmentWithItsLightning) {
  clsPlayer& player = placeOpponent(bluePlayer, 10000, 10000);
  lay(player, 200, 200);
  lay(player, 300, 220);
  player.tails[1].isCharged(true);
  // The argument of the start, then distance and sign on both axes for each stroke. Signs below .4999 are minus.
  machine.scriptedDraws = {0.5F,                       //
                           0.58F, 0.9F, 0.28F, 0.1F,   // 300 right, 150 up
                           0.88F, 0.9F, 0.88F, 0.9F,   // 450 right, 450 down
                           0.28F, 0.1F, 0.28F, 0.9F,   // 150 left, 150 down
                           0.98F, 0.9F, 0.38F, 0.1F};  // 500 right, 200 up
  player.paintSelf();
  EXPECT_TRUE(machine.scriptedDraws.empty());
  // From (200, 200) or a twip next to it, by (20, -10), (30, 30), (-10, 10) and (33, -13): the middles of the strokes.
  EXPECT_EQ(pixelAt(canvas(), 210, 195), RGB(255, 255, 255));
  EXPECT_EQ(pixelAt(canvas(), 235, 205), RGB(195, 195, 195));
  EXPECT_EQ(pixelAt(canvas(), 245, 225), RGB(135, 135, 135));
  EXPECT_EQ(pixelAt(canvas(), 260, 222), RGB(75, 75, 75));
  EXPECT_EQ(pixelAt(canvas(), 290, 218), RGB(0, 0, 255));
  expectGolden("lightning", canvas(), {190, 180, 120, 60});
}

}  // namespace
}  // namespace kelvora
