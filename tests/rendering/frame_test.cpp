#include <gtest/gtest.h>

#include <functional>

#include "tests/rendering/paintTest.h"

namespace kelvora {
namespace {

class Frames : public PaintTest {
 protected:
  Frames() { modMain::mousePos = {1000, 1000}; }
};

TEST_F(Frames, AnEmptyWorldStillHasBorderIconsPointerAndTexts) {
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0), RGB(255, 0, 0)) << "the world's corner: nobody has a place yet";
  EXPECT_EQ(pixelAt(canvas(), 1000.0, 1000.0).green, pointerGreen);
  EXPECT_EQ(pixelAt(canvas(), 11445 - 6 * 665 + 300.0, 9120 - 1500 + 300.0).green, iconGreen);
  EXPECT_EQ(modMain::debugText, "Paint Time:000\r\n");
}

TEST_F(Frames, TheBallLiesOverThePointerAndAGhostUnderEverything) {
  clsPlayer& player = placeLocal();
  modMain::mousePos = {5722, 4560};
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen);
  player.alive = false;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, pointerGreen);
}

TEST_F(Frames, OpponentsLieInTheOrderOfTheirSlotsUnderTheLocalPlayer) {
  placeLocal();
  modMain::localPlayer.isConnected = false;
  placeOpponent(3, 50000, 50000);
  placeOpponent(2, 50000, 50000);
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen + 2);
  modMain::opponents[1].isConnected = false;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen + 3) << "who has gone is not painted";
  modMain::localPlayer.isConnected = true;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen);
}

TEST_F(Frames, ADeadLocalPlayerLiesUnderOpponents) {
  placeLocal().alive = false;
  placeOpponent(3, 50000, 50000);
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen + 3);
}

TEST_F(Frames, ThePoolsArePaintedBackgroundExplosionsNetwork) {
  placeLocal();
  modMain::localPlayer.isConnected = false;
  modMain::receiveParticleNew("n", 4, 50000, 50000, 0, 0);
  modMain::particles.resize(1);
  clsParticle& star = modMain::particles[0];
  star.type = 0;
  star.depth = 1;
  star.position = {50000 - 150, 50000 - 150};
  modMain::particleCount = 1;
  modMain::paintFrame();
  // The ball's cell ends at the centre; the star of radius 29 lies in it, 1 twentieth nearer to the centre.
  EXPECT_EQ(pixelAt(canvas(), 5722 - 142.0, 4560 - 142.0), spriteOnWhite(4, ballsGreen, 0));
}

TEST_F(Frames, Q123AParticleThatLeavesSkipsTheNextOne) {
  placeLocal();
  modMain::addExplosion({50000, 50000}, 3);
  for (clsParticle& particle : modMain::explosionParticles) particle.age = 5;
  modMain::explosionParticles[0].age = 10;
  modMain::paintFrame();
  ASSERT_EQ(modMain::explosionCount, 2);
  EXPECT_EQ(modMain::explosionParticles[0].age, 5) << "it stands where the first one was: skipped";
  EXPECT_EQ(modMain::explosionParticles[1].age, 6);
  EXPECT_EQ(modMain::explosionParticles[0].num_, 0);
  EXPECT_EQ(modMain::explosionParticles[1].num_, 1);
}

TEST_F(Frames, TheDebugTextOfANormalFrame) {
  placeLocal(12345.75F, 500).breaksOn = true;
  modMain::frameTime = 7;
  modMain::paintFrame();
  EXPECT_EQ(modMain::debugText, "Location: 12.346   .500\r\nBreaks on, right-click to release\r\nPaint Time:007\r\n");
  modMain::localPlayer.breaksOn = false;
  modMain::paintFrame();
  EXPECT_EQ(modMain::debugText, "Location: 12.346   .500\r\nPaint Time:000\r\n");
}

TEST_F(Frames, ADeadLocalPlayerStillHasHisLocationLine) {
  placeLocal(1000, 2000).alive = false;
  modMain::paintFrame();
  EXPECT_EQ(modMain::debugText, "Location: 1.000   2.000\r\nPaint Time:000\r\n");
}

// The clock moves on while the canvas is painted.
class SlowPaint : public HeadlessBackend {
 public:
  Tick paintTime = 0;
  Tick tickCount() override { return ticks += paintTime; }
};

class FrameClock : public Frames {
 protected:
  FrameClock() {
    slow.pictureSource = plainSheet;
    slow.path = machine.path;
    installBackend(&slow);
  }
  ~FrameClock() override { installBackend(&machine); }
  /// A frame of an empty world reads the clock twice, so it takes this time.
  void paint(Tick ms) {
    slow.paintTime = ms;
    modMain::paintFrame();
  }
  SlowPaint slow;
};

TEST_F(FrameClock, TheAverageIsOver101Frames) {
  paint(505);
  EXPECT_EQ(modMain::frameTimes[0], 505);
  EXPECT_EQ(modMain::frameTime, 5) << "505 / 101";
  paint(0);
  EXPECT_EQ(modMain::frameTimes[0], 0);
  EXPECT_EQ(modMain::frameTimes[1], 505);
  for (int frame = 2; frame <= 100; ++frame) paint(0);
  EXPECT_EQ(modMain::frameTimes[100], 505);
  EXPECT_EQ(modMain::frameTime, 5) << "still in the sum";
  paint(0);
  EXPECT_EQ(modMain::frameTime, 0) << "dropped";
}

TEST_F(FrameClock, TheAverageIsRoundedToTheNearest) {
  paint(50);
  EXPECT_EQ(modMain::frameTime, 0) << ".495";
  paint(1);
  EXPECT_EQ(modMain::frameTime, 1) << "51 / 101 is .505";
  paint(101);
  EXPECT_EQ(modMain::frameTime, 2) << "152 / 101 is 1.505";
}

TEST_F(FrameClock, ItClimbsToTheRealTimeOverAHundredFrames) {
  for (int frame = 0; frame < 101; ++frame) paint(20);
  EXPECT_EQ(modMain::frameTime, 20);
  EXPECT_EQ(modMain::getTimeScale(), 2);
}

TEST_F(FrameClock, Q126TheTextShowsTheAverageBeforeThisFrame) {
  paint(101 * 12);
  EXPECT_EQ(modMain::debugText, "Paint Time:000\r\n");
  paint(0);
  EXPECT_EQ(modMain::debugText, "Paint Time:012\r\n");
}

// Time passes whenever a glyph is asked for, so in the text layers alone.
class SlowGlyphs : public GlyphSource {
 public:
  explicit SlowGlyphs(Tick& clock) : ticks(clock) {}
  Glyph glyph(const FontSpec&, unsigned char) override {
    ticks += 1000;
    return {0, 0, 0, 0, 5, {}};
  }
  int lineHeight(const FontSpec&) override { return 12; }
  Tick& ticks;
};

TEST_F(Frames, Q139TheTextsAreNotPartOfTheMeasuredTime) {
  SlowGlyphs glyphs(machine.ticks);
  Surface::setGlyphSource(&glyphs);
  const Tick before = machine.ticks;
  modMain::paintFrame();
  Surface::setGlyphSource(nullptr);
  EXPECT_GT(machine.ticks, before + 1000) << "the debug text took its time";
  EXPECT_EQ(modMain::frameTimes[0], 0);
}

}  // namespace
}  // namespace kelvora
