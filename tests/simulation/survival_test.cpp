#include <gtest/gtest.h>

#include <utility>

#include "frontend/fontMan.h"
#include "rendering/frmGfx.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

using modMain::world;

// A cell of the ball's sheet is 735 wide, so the player is a disc of 367.5.
class Survival : public GameTest {
 protected:
  Survival() {
    player.init(redPlayer, -1, 7, "Ann");
    modMain::world.particles.clear();  // the field created with the player
    modMain::world.particleCount = 0;
    player.breaksOn = false;
    player.position = {50000, 50000};
    modMain::world.mousePos = {5722, 4560};  // the canvas's centre: no speed
    modMain::world.survivalMode = true;
  }

  /// Adds a background particle at this offset from the player.
  static void addParticle(float dx, float dy) {
    addTo(modMain::world.particles, dx, dy), ++modMain::world.particleCount;
  }
  template <class Pool>
  static void addTo(Pool& pool, float dx, float dy) {
    pool.emplace_back().position = {50000 + dx, 50000 + dy};
  }

  clsPlayer& player = modMain::world.localPlayer;
};

TEST_F(Survival, ThePlayerIsAsWideAsACellOfTheSheet) {
  EXPECT_EQ(player.getWidth(), 735);
  frmGfx->imgPlayer[0].Width = 2947;  // a quarter is 736.75
  EXPECT_EQ(player.getWidth(), 736);
  player.colour = cyanPlayer;
  frmGfx->imgPlayer[3].Width = 400;
  EXPECT_EQ(player.getWidth(), 736) << "the first sheet's, whatever the colour";
}

TEST_F(Survival, ParticleAtHalfTheWidthEndsTheRun) {
  modMain::world.survivalMaxDistance = 1234.5F;
  addParticle(367.5F, 0);
  modMain::checkSurvival();
  EXPECT_FALSE(modMain::isSurvivalMode());
  EXPECT_EQ(world.chatLines[0].text, "Highest distance reached in survival mode was 1234.5");
  EXPECT_EQ(world.chatLines[0].colour, RGB(255, 255, 255));
  EXPECT_EQ(world.chatLines[0].size, 0);
  EXPECT_EQ(world.chatLines[1].text, "");
}

TEST_F(Survival, AParticleJustBeyondItDoesNot) {
  addParticle(367.53125F, 0);
  addParticle(0, -367.53125F);
  addParticle(260, 260);  // 367.7 away
  modMain::checkSurvival();
  EXPECT_TRUE(modMain::isSurvivalMode());
  EXPECT_EQ(world.chatLines[0].text, "");
}

TEST_F(Survival, DistanceIsMeasuredInEveryDirection) {
  for (const auto& [dx, dy] : {std::pair{-367.5F, 0.0F}, std::pair{0.0F, 367.5F}, std::pair{-220.0F, -290.0F}}) {
    modMain::world.particles.clear();
    modMain::world.particleCount = 0;
    addParticle(dx, dy);
    modMain::world.survivalMode = true;
    modMain::checkSurvival();
    EXPECT_FALSE(modMain::isSurvivalMode()) << dx << " " << dy;
  }
}

TEST_F(Survival, Q151TwoParticlesReportTheRecordTwice) {
  addParticle(100, 0);
  addParticle(5000, 0);
  addParticle(0, -100);
  modMain::checkSurvival();
  EXPECT_FALSE(modMain::isSurvivalMode());
  EXPECT_EQ(world.chatLines[0].text, "Highest distance reached in survival mode was 0");
  EXPECT_EQ(world.chatLines[1].text, world.chatLines[0].text);
  EXPECT_EQ(world.chatLines[2].text, "");
}

TEST_F(Survival, OnlyTheBackgroundTouches) {
  addTo(modMain::world.explosionParticles, 0, 0);
  modMain::world.explosionCount = 1;
  addTo(modMain::world.netParticles, 0, 0);
  modMain::world.netParticleCount = 1;
  addTo(modMain::world.particles, 0, 0);  // beyond the pool's count
  player.move();
  EXPECT_TRUE(modMain::isSurvivalMode());
}

TEST_F(Survival, MoveChecksBeforeTheStepAndAfterStoringTheLastPosition) {
  modMain::world.mousePos = {5722, 0};
  modMain::world.steerAngle = 0;
  modMain::world.steerQuadrant = 1;  // 300 up
  addParticle(0, 400);               // 400 away before the step, 700 after it
  player.move();
  EXPECT_TRUE(modMain::isSurvivalMode());
  EXPECT_EQ(player.position, (Vector{50000, 49700}));
  player.position = {50000, 50100};
  player.move();
  EXPECT_FALSE(modMain::isSurvivalMode()) << "300 away before the step, 600 after it";
  EXPECT_EQ(player.lastPosition, (Vector{50000, 50100}));
  EXPECT_EQ(player.position, (Vector{50000, 49800}));
}

TEST_F(Survival, AGhostIsTouchedToo) {
  player.alive = false;
  addParticle(0, 0);
  player.move();
  EXPECT_FALSE(modMain::isSurvivalMode());
}

TEST_F(Survival, Q154NothingTouchesAPlayerAtRest) {
  addParticle(0, 0);
  player.breaksOn = true;
  player.velocity = {};
  player.move();
  EXPECT_TRUE(modMain::isSurvivalMode());
  player.velocity = {10, 0};
  player.move();
  EXPECT_FALSE(modMain::isSurvivalMode());
}

TEST_F(Survival, WhileItIsOffNothingIsChecked) {
  modMain::world.survivalMode = false;
  addParticle(0, 0);
  player.move();
  EXPECT_EQ(world.chatLines[0].text, "");
}

TEST_F(Survival, Q150NothingInTheGameTurnsItOn) {
  modMain::world = {};
  login();
  modMain::createParticleField();
  for (const char* line : {"survival", "/survival", "/survivalMode"}) {
    frmMain->txtChat.Text = line;
    frmMain->txtChat.KeyDown(13, 0);
    frmMain->txtChat.KeyPress(13);
  }
  for (int key = 0; key < 256; ++key) {
    frmMain->canvas.KeyDown(key, 0);
    frmMain->canvas.KeyPress(key);
  }
  for (int frame = 0; frame < 10; ++frame) modMain::runFrame();
  EXPECT_FALSE(modMain::isSurvivalMode());
  EXPECT_EQ(modMain::world.survivalOrigin, Vector{});
  EXPECT_EQ(modMain::world.survivalMaxDistance, 0);
}

TEST_F(Survival, Q152TheRecordOutlivesItsRun) {
  modMain::world.survivalMaxDistance = 700;
  addParticle(0, 0);
  modMain::checkSurvival();
  EXPECT_EQ(modMain::world.survivalMaxDistance, 700);
  modMain::world.survivalMode = true;
  modMain::checkSurvival();
  EXPECT_EQ(world.chatLines[0].text, "Highest distance reached in survival mode was 700");
  EXPECT_TRUE(machine.settings.empty()) << "not stored";
}

}  // namespace
}  // namespace kelvora
