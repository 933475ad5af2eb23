// A short form of kelvora_long_run, which plays for hours.

#include "tools/headless/longPlay.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(LongPlay, EveryKindOfMessageOccursAndOnlyKeptStateGrows) {
  LongPlay game;
  // By now the window has been large once.
  game.play(80 * LongPlay::framesPerSecond);
  game.playToCalm();
  const LongPlay::Figures early = game.figures();
  game.play(4 * LongPlay::framesPerMinute - game.framesPlayed());
  game.playToCalm();
  const LongPlay::Figures late = game.figures();
  for (const int id : {134, 147, 138, 137, 136, 144, 132, 145, 140, 141, 148, 142, 150,
                       151, 153, 154, 156, 157, 159, 160, 161, 162, 164, 168, 165}) {
    EXPECT_GT(game.received[id], 0) << "message " << id << " to the client";
  }
  for (const int id : {131, 133, 135, 144, 149, 152, 155, 158}) EXPECT_GT(game.sent[id], 0) << "message " << id;
  EXPECT_GE(game.boxes, 1 + 2) << "for the refused login, and the spawns refused at 1:30 and 3:30";
  EXPECT_GE(late.slots, 5U + 2) << "a visitor came, and a bot after the visitor had left";
  EXPECT_GE(late.rounds, 2);
  const std::int64_t growth = (late.heapBytes - late.keptBytes) - (early.heapBytes - early.keptBytes);
  EXPECT_LT(growth, 32 * 1024);
}

}  // namespace
}  // namespace kelvora
