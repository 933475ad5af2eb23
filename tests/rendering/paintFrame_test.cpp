#include <gtest/gtest.h>

#include <memory>

#include "tests/rendering/paintTest.h"
#include "tests/support/countingPeer.h"

namespace kelvora {
namespace {

class Frames : public PaintTest {
 protected:
  Frames() { modMain::world.mousePos = {1000, 1000}; }
};

TEST_F(Frames, AnEmptyWorldStillHasBorderIconsPointerAndTexts) {
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0), RGB(255, 0, 0)) << "the world's corner: nobody has a position yet";
  EXPECT_EQ(pixelAt(canvas(), 1000.0, 1000.0).green, pointerGreen);
  EXPECT_EQ(pixelAt(canvas(), 11445 - 6 * 665 + 300.0, 9120 - 1500 + 300.0).green, iconGreen);
  EXPECT_EQ(modMain::world.debugText, "Paint Time:000\r\n");
  EXPECT_GT(countPixels(canvas(), cyan), 100) << "and its letters";
}

TEST_F(Frames, TheBallLiesOverThePointerAndAGhostUnderEverything) {
  clsPlayer& player = placeLocal();
  modMain::world.mousePos = {5722, 4560};
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen);
  player.alive = false;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, pointerGreen);
}

TEST_F(Frames, OpponentsLieInTheOrderOfTheirSlotsUnderTheLocalPlayer) {
  placeLocal();
  modMain::world.localPlayer.isConnected = false;
  placeOpponent(cyanPlayer, 50000, 50000);
  placeOpponent(greenPlayer, 50000, 50000);
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen + 2);
  modMain::world.opponents[1].isConnected = false;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen + 3) << "departed players are not painted";
  modMain::world.localPlayer.isConnected = true;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen);
}

TEST_F(Frames, ADeadLocalPlayerLiesUnderOpponents) {
  placeLocal().alive = false;
  placeOpponent(cyanPlayer, 50000, 50000);
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0).green, playerGreen + 3);
}

TEST_F(Frames, ADisconnectedPlayerIsNotPaintedDeadOrAlive) {
  clsPlayer& player = placeLocal();
  player.isConnected = false;
  for (const bool alive : {false, true}) {
    player.alive = alive;
    modMain::paintFrame();
    EXPECT_EQ(modMain::world.debugText, "Paint Time:000\r\n");
    EXPECT_EQ(player.animTick, 0);
    EXPECT_EQ(countPixels(radar(), white), radar().pixelWidth() * radar().pixelHeight());
  }
}

// The opponent in slot 0 captures during their own paint, after the ghosts and before the living balls.
TEST_F(Frames, PlayerCapturedDuringThePaintIsMissingFromIt) {
  clsPlayer& player = placeLocal();
  clsPlayer& winner = placeOpponent(cyanPlayer, 53000, 50000);
  winner.addTail({10000, 10000});
  winner.addTail({10100, 10000});
  modMain::addKillerTail(winner.serverNode, player.serverNode, 10000, 10000);
  modMain::paintFrame();
  ASSERT_FALSE(player.alive);
  EXPECT_EQ(player.animTick, 0);
  EXPECT_EQ(modMain::world.debugText, "Paint Time:000\r\n");
  modMain::paintFrame();
  EXPECT_EQ(player.animTick, 1) << "a ghost from the next frame on";
}

TEST_F(Frames, ThePoolsArePaintedBackgroundExplosionsNetwork) {
  placeLocal();
  modMain::world.localPlayer.isConnected = false;
  modMain::receiveParticleNew("n", 4, 50000, 50000, 0, 0);
  modMain::world.particles.resize(1);
  clsParticle& star = modMain::world.particles[0];
  star.type = ParticleType::Background;
  star.depth = 1;
  star.position = {50000 - 150, 50000 - 150};
  modMain::world.particleCount = 1;
  modMain::paintFrame();
  // The ball's cell ends at the centre. The star of radius 29 is inside it, 1/20 nearer to the centre.
  EXPECT_EQ(pixelAt(canvas(), 5722 - 142.0, 4560 - 142.0), spriteOnWhite(4, ballsGreen, 0));
}

TEST_F(Frames, ADeadOpponentIsPaintedToo) {
  placeLocal(30000, 50000);
  placeOpponent(cyanPlayer, 31000, 50000).alive = false;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722 + 1000.0, 4560.0), exchangedOnWhite(0, playerGreen + 3));
}

TEST_F(Frames, AGhostLiesUnderTheParticles) {
  placeLocal().alive = false;
  modMain::world.mousePos = {1000, 1000};
  modMain::world.particles.resize(1);
  modMain::world.particles[0].depth = 1;
  modMain::world.particles[0].position = {50000, 50000};
  modMain::world.particleCount = 1;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 4560.0), RGB(190, 190, 190));
  EXPECT_EQ(pixelAt(canvas(), 5722.0 + 200, 4560.0), exchangedOnWhite(0, playerGreen));
}

TEST_F(Frames, ExplosionsLieOverTheFieldAndUnderTheServersParticles) {
  machine.seconds = 0.5;  // rounds to 0, the only time at which they are drawn
  placeLocal(30000, 50000);
  modMain::world.particles.resize(1);
  modMain::world.particles[0].depth = 1;
  modMain::world.particles[0].position = {31000, 50000};
  modMain::world.particleCount = 1;
  const double star = 5722 + .95 * 1000;  // pulled by a twentieth
  modMain::paintFrame();
  ASSERT_EQ(pixelAt(canvas(), star, 4560.0), RGB(190, 190, 190));
  modMain::addExplosion({31100, 50100}, 1);
  modMain::world.explosionParticles[0].kind = 2;
  modMain::paintFrame();
  ASSERT_EQ(pixelAt(canvas(), star, 4560.0).red, 16 * 3) << "the explosion's ball, over the star";
  modMain::receiveParticleNew("n", 6, 31100, 50100, 0, 0);
  modMain::world.explosionParticles[0].blink = false;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), star, 4560.0).red, 16 * 7) << "the server's, over both";
}

TEST_F(Frames, AnOpponentLiesOverTheServersParticles) {
  placeLocal(30000, 50000);
  modMain::receiveParticleNew("n", 4, 31000, 50000, 0, 0);
  modMain::paintFrame();
  ASSERT_EQ(pixelAt(canvas(), 5722 + 900.0, 4560 - 100.0).green, ballsGreen);
  placeOpponent(cyanPlayer, 31000, 50000);
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722 + 900.0, 4560 - 100.0).green, playerGreen + 3);
}

TEST_F(Frames, TheBorderLiesOverOpponents) {
  placeLocal(2000, 50000);
  placeOpponent(cyanPlayer, 0, 50000);
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 3722.0, 4560.0), RGB(255, 0, 0));
  EXPECT_EQ(pixelAt(canvas(), 3722.0 + 150, 4560.0).green, playerGreen + 3);
}

TEST_F(Frames, TheIconsLieOverTheBorder) {
  // The world's lower edge at 7900, across the icons at 7620 to 8250.
  placeLocal(50000, 100000 - (7900 - 4560));
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 7000.0, 7900.0), RGB(255, 0, 0));
  EXPECT_EQ(pixelAt(canvas(), 7600.0, 7900.0), RGB(16, iconGreen, 0));
}

TEST_F(Frames, ThePointerLiesOverTheIcons) {
  placeLocal();
  modMain::world.mousePos = {7700, 7900};
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 7700.0, 7900.0).green, pointerGreen);
}

class FrameTexts : public Frames {
 protected:
  FrameTexts() {
    Surface::setGlyphSource(&blocks);
    // So low that the centre message at 1500 - 500 overlaps the console's line 4 at 3000 - 5 * 400, and line 3 at 1400
    // the ball around 1500.
    canvas().Height = 3000;
    placeLocal(30000, 50000);
    for (ChatLine& line : modMain::world.chatLines) line = {std::string(90, 'x'), RGB(255, 255, 255), 9};
  }
  ~FrameTexts() override { Surface::setGlyphSource(nullptr); }
  Blocks blocks;
};

TEST_F(FrameTexts, TheConsoleLiesOverTheLivingLocalPlayer) {
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 1400.0 + 30), RGB(165, 165, 165)) << "255 less 3 * 30";
  EXPECT_EQ(pixelAt(canvas(), 5722.0, 1400.0 + 200).green, playerGreen) << "below the line's ten pixels";
}

TEST_F(FrameTexts, TheCentreMessageLiesOverTheConsole) {
  modMain::showCentreMessage("abcd");
  modMain::paintFrame();
  // At pixel 321 on any canvas of this width, 24 pixels wide.
  EXPECT_EQ(pixelAt(canvas(), 330, 69), RGB(0, 254, 0));
  EXPECT_EQ(pixelAt(canvas(), 310, 69), RGB(135, 135, 135));
}

TEST_F(Frames, TheRadarIsClearedForEachFrame) {
  clsPlayer& player = placeLocal(25000, 50000);
  modMain::paintFrame();
  // (438, 698): column 29, row 47; at 75000 (1316, 698): column 88.
  EXPECT_EQ(pixelAt(radar(), 29, 5), RGB(128, 128, 128));
  player.position.x = 75000;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(radar(), 29, 5), white);
  EXPECT_EQ(pixelAt(radar(), 30, 45), white) << "nor the previous dot";
  EXPECT_EQ(pixelAt(radar(), 88, 5), RGB(128, 128, 128));
}

TEST_F(Frames, EachFrameIsPresentedOnceOnEachSurface) {
  placeLocal();
  placeOpponent(cyanPlayer, 50000, 50000);
  int canvasShown = 0;
  int radarShown = 0;
  canvas().peer = std::make_unique<CountingPeer>(canvasShown);
  radar().peer = std::make_unique<CountingPeer>(radarShown);
  for (int frame = 1; frame <= 3; ++frame) {
    modMain::paintFrame();
    EXPECT_EQ(canvasShown, frame);
    EXPECT_EQ(radarShown, frame);
  }
  canvas().peer.reset();
  radar().peer.reset();
}

TEST_F(Frames, TheSpareParticlesLieOverTheBackgroundAndUnderTheExplosions) {
  placeLocal();
  modMain::world.localPlayer.isConnected = false;
  frmMain->mnuQuarkStars.Checked = false;
  modMain::world.particles.resize(1);
  clsParticle& quark = modMain::world.particles[0];
  quark.depth = 1;
  quark.position = {50000 - 150, 50000 - 150};
  quark.red = 255;
  modMain::world.particleCount = 1;
  modMain::world.spareParticles = modMain::world.particles;
  modMain::world.spareParticles[0].red = 0;
  modMain::world.spareParticles[0].green = 255;
  modMain::world.spareParticleCount = 1;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722 - 142.0, 4560 - 142.0), RGB(0, 245, 0)) << "dimmed by 10 for its depth";

  machine.seconds = 0;  // the only time of day at which explosions are visible
  modMain::addExplosion({50000, 50000}, 1);
  modMain::world.explosionParticles[0].kind = 4;
  modMain::paintFrame();
  EXPECT_EQ(pixelAt(canvas(), 5722 - 142.0, 4560 - 142.0), RGB(16 * 5, ballsGreen, 0)) << "its ball, kind 4";
}

TEST_F(Frames, Q123RemovingAParticleSkipsTheNextOne) {
  placeLocal();
  modMain::addExplosion({50000, 50000}, 3);
  for (clsParticle& particle : modMain::world.explosionParticles) particle.age = 5;
  modMain::world.explosionParticles[0].age = 10;
  modMain::paintFrame();
  ASSERT_EQ(modMain::world.explosionCount, 2);
  EXPECT_EQ(modMain::world.explosionParticles[0].age, 5) << "it has moved to the first one's slot: skipped";
  EXPECT_EQ(modMain::world.explosionParticles[1].age, 6);
  EXPECT_EQ(modMain::world.explosionParticles[0].num_, 0);
  EXPECT_EQ(modMain::world.explosionParticles[1].num_, 1);
}

TEST_F(Frames, TheDebugTextOfANormalFrame) {
  placeLocal(12345.75F, 500).breaksOn = true;
  modMain::world.frameTime = 7;
  modMain::paintFrame();
  EXPECT_EQ(modMain::world.debugText,
            "Location: 12.346   .500\r\nBreaks on, right-click to release\r\nPaint Time:007\r\n");
  modMain::world.localPlayer.breaksOn = false;
  modMain::paintFrame();
  EXPECT_EQ(modMain::world.debugText, "Location: 12.346   .500\r\nPaint Time:000\r\n");
}

TEST_F(Frames, Q220TheBrakesAreSpelledBreaks) {
  EXPECT_EQ(modMain::world.tips[0], "Right-Click to release or engage breaks");
  clsPlayer& player = placeLocal();
  player.breaksOn = false;
  player.toggleBreaks();
  EXPECT_TRUE(player.breaksOn);
  modMain::paintFrame();
  EXPECT_NE(modMain::world.debugText.find("\r\nBreaks on, right-click to release\r\n"), std::string::npos);
}

TEST_F(Frames, ADeadLocalPlayerStillHasALocationLine) {
  placeLocal(1000, 2000).alive = false;
  modMain::paintFrame();
  EXPECT_EQ(modMain::world.debugText, "Location: 1.000   2.000\r\nPaint Time:000\r\n");
}

// Time passes whenever a glyph is requested, so only in the text layers.
class SlowGlyphs : public GlyphSource {
 public:
  explicit SlowGlyphs(Millis& clock) : ticks(clock) {}
  Glyph glyph(const FontSpec&, unsigned char) override {
    ticks += 1000;
    return {0, 0, 0, 0, 5, {}};
  }
  int lineHeight(const FontSpec&) override { return 12; }
  Millis& ticks;
};

TEST_F(Frames, Q139TheTextsAreNotPartOfTheMeasuredTime) {
  SlowGlyphs glyphs(machine.ticks);
  Surface::setGlyphSource(&glyphs);
  const Millis before = machine.ticks;
  modMain::paintFrame();
  Surface::setGlyphSource(nullptr);
  EXPECT_GT(machine.ticks, before + 1000) << "the debug text took time";
  EXPECT_EQ(modMain::world.frameTimes[0], 0);
}

}  // namespace
}  // namespace kelvora
