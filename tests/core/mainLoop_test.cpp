#include <gtest/gtest.h>

#include <algorithm>

#include "base/fault.h"
#include "core/timeScale.h"
#include "frontend/frmConnect.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

class MainLoop : public GameTest {
 protected:
  int doEventsBefore = 0;

  /// Runs the loop and ends it in the DoEvents of the given pass.
  void runPasses(int passes) {
    machine.onDoEvents = [this, last = machine.doEventsCount + passes] {
      if (machine.doEventsCount == last) throw ProcessEnded{};
    };
    EXPECT_THROW(modMain::mainLoop(), ProcessEnded);
    machine.onDoEvents = nullptr;
  }

  static std::vector<Pixel> copyOf(const PictureBox& box) { return {box.pixels().begin(), box.pixels().end()}; }
};

TEST_F(MainLoop, WithoutAConnectionAPassIsJustDoEvents) {
  frmMain->canvas.Line(0, 0, 3000, 3000);
  const std::vector<Pixel> before(frmMain->canvas.pixels().begin(), frmMain->canvas.pixels().end());
  modMain::world.localPlayer.isConnected = true;
  modMain::world.localPlayer.breaksOn = true;
  modMain::world.localPlayer.velocity = {100, 100};
  modMain::world.debugText = "untouched";
  modMain::world.frameTimes[0] = 5;
  runPasses(3);
  EXPECT_EQ(machine.doEventsCount, 3);
  EXPECT_EQ(modMain::world.localPlayer.position, (Vector{0, 0}));
  EXPECT_EQ(modMain::world.debugText, "untouched");
  EXPECT_EQ(modMain::world.frameTimes[0], 5);
  EXPECT_EQ(modMain::world.frameTimes[1], 0);
  EXPECT_TRUE(modMain::world.opponents.empty());
  EXPECT_TRUE(modMain::world.particles.empty());
  EXPECT_TRUE(modMain::world.explosionParticles.empty());
  EXPECT_TRUE(modMain::world.netParticles.empty());
  EXPECT_TRUE(std::equal(before.begin(), before.end(), frmMain->canvas.pixels().begin()));
}

TEST_F(MainLoop, EveryStateButSevenIsIdle) {
  for (int state = 0; state <= 9; ++state) {
    modMain::world.debugText.clear();
    server().setState(static_cast<SocketState>(state));
    runPasses(1);
    EXPECT_EQ(modMain::world.debugText.empty(), state != 7) << state;
  }
}

TEST_F(MainLoop, MayWaitForEventsOnlyWithoutAConnection) {
  runPasses(1);
  EXPECT_TRUE(machine.lastMayWait);
  server().setState(sckConnected);
  runPasses(1);
  EXPECT_FALSE(machine.lastMayWait);
}

TEST_F(MainLoop, PaintsBetweenTheConnectionAndTheLoginButMovesNobody) {
  connect();
  ASSERT_FALSE(modMain::world.localPlayer.isConnected);
  modMain::world.localPlayer.velocity = {100, 100};
  modMain::world.localPlayer.breaksOn = true;
  modMain::runFrame();
  EXPECT_NE(modMain::world.debugText.find("Paint Time:"), std::string::npos);
  EXPECT_EQ(modMain::world.localPlayer.position, (Vector{0, 0}));
}

TEST_F(MainLoop, PaintsWithNoOpponents) {
  login();
  ASSERT_EQ(modMain::world.opponentCount, 0);
  modMain::runFrame();
  EXPECT_NE(modMain::world.debugText.find("Paint Time:"), std::string::npos);
}

TEST_F(MainLoop, Q313ADisconnectionLeavesTheRadar) {
  login();
  join(8, 1, "Bob", 75'000, 25'000);
  runPasses(1);
  const auto radar = copyOf(frmMain->picRadar);
  const auto view = copyOf(frmMain->canvas);
  netMan::disconnectFromServer();
  runPasses(2);
  EXPECT_EQ(copyOf(frmMain->picRadar), radar);
  EXPECT_NE(copyOf(frmMain->canvas), view) << "the title picture";
  connect();
  runPasses(1);
  EXPECT_NE(copyOf(frmMain->picRadar), radar) << "nobody is in the game yet";
}

TEST_F(MainLoop, Q313AConnectionErrorLeavesTheLastFrame) {
  login();
  join(8, 1, "Bob", 75'000, 25'000);
  runPasses(1);
  const auto radar = copyOf(frmMain->picRadar);
  const auto view = copyOf(frmMain->canvas);
  server().setState(sckError);
  tick(1000);
  runPasses(2);
  EXPECT_EQ(copyOf(frmMain->picRadar), radar);
  EXPECT_EQ(copyOf(frmMain->canvas), view);
}

TEST_F(MainLoop, MovesTheLocalPlayerAndTicksItsPowerups) {
  login();
  clsPlayer& player = modMain::world.localPlayer;
  player.velocity = {100, -50};  // the brakes are on: each axis loses 3 per frame
  player.powerups[shieldSlot] = {1, 15, true};
  modMain::runFrame();
  EXPECT_EQ(player.position, (Vector{50'097, 49'953}));
  EXPECT_EQ(player.powerups[shieldSlot].timeLeft, 14);
}

TEST_F(MainLoop, TicksThePowerupsOfConnectedOpponents) {
  login();
  join(8, 1, "Bob");
  join(9, 2, "Cat");
  modMain::world.opponents[0].powerups[turboSlot] = {0, 5, true};
  modMain::world.opponents[1].powerups[turboSlot] = {0, 5, true};
  modMain::world.opponents[1].isConnected = false;
  modMain::runFrame();
  EXPECT_EQ(modMain::world.opponents[0].powerups[turboSlot].timeLeft, 4);
  EXPECT_EQ(modMain::world.opponents[1].powerups[turboSlot].timeLeft, 5);
}

TEST_F(MainLoop, SkipsAPlayerWhoLeftDuringDoEvents) {
  login();
  join(8, 1, "Bob");
  join(9, 2, "Cat");
  clsPlayer& bob = modMain::world.opponents[0];
  clsPlayer& cat = modMain::world.opponents[1];
  bob.powerups[turboSlot] = cat.powerups[turboSlot] = {0, 5, true};
  machine.onDoEvents = [this] {
    if (machine.doEventsCount == 1 + doEventsBefore)
      server().deliver(
          "\x80\x8C"
          "8\x81");  // player 8 left
    if (machine.doEventsCount == 2 + doEventsBefore) throw ProcessEnded{};
    tick(1000);
  };
  doEventsBefore = machine.doEventsCount;
  EXPECT_THROW(modMain::mainLoop(), ProcessEnded);
  EXPECT_EQ(modMain::world.opponentCount, 2);
  EXPECT_EQ(modMain::world.opponents.size(), 2U);
  EXPECT_FALSE(bob.isConnected);
  EXPECT_EQ(bob.powerups[turboSlot].timeLeft, 4) << "one frame, then gone";
  EXPECT_EQ(cat.powerups[turboSlot].timeLeft, 3) << "two frames";
}

TEST_F(MainLoop, InStarsModeBackgroundParticlesWrapButDoNotMove) {
  login();
  modMain::world.particleCount = 2;
  modMain::world.particles.assign(2, clsParticle{});
  for (clsParticle& particle : modMain::world.particles) {
    particle.position = {50'000, 50'000};
    particle.velocity = {7, 7};
    particle.maxSpeed = 15;
    particle.fieldWidth = 11'445;
    particle.fieldHeight = 9'120;
  }
  modMain::world.particles[1].position.x = 50'000 - 60'000;  // left far behind
  ASSERT_TRUE(frmMain->mnuQuarkStars.Checked);
  modMain::runFrame();
  EXPECT_EQ(modMain::world.particles[0].position, (Vector{50'000, 50'000}));
  EXPECT_NE(modMain::world.particles[1].position.x, -10'000);

  frmMain->mnuQuarkStars.Checked = false;
  modMain::runFrame();
  EXPECT_EQ(modMain::world.particles[0].position, (Vector{50'007, 50'007}));
}

// The canvas's centre (5722, 4560) shows the local player; 2000 units to the right is pixel (515, 304).
TEST_F(MainLoop, Q221ParticlesAreShownOneStepBehind) {
  login();
  frmMain->mnuQuarkStars.Checked = false;
  modMain::world.particleCount = 1;
  modMain::world.particles.assign(1, clsParticle{});
  clsParticle& particle = modMain::world.particles[0];
  particle.position = {52'000, 50'000};
  particle.velocity = {3000, 0};
  particle.maxSpeed = 3000;
  particle.fieldWidth = 11'445;
  particle.fieldHeight = 9'120;
  particle.red = particle.green = particle.blue = 255;
  modMain::runFrame();
  const auto pixel = [](int x, int y) {
    const PictureBox& canvas = frmMain->canvas;
    return canvas.pixels()[static_cast<std::size_t>(y * canvas.pixelWidth() + x)];
  };
  EXPECT_EQ(particle.position, (Vector{55'000, 50'000}));
  EXPECT_EQ(pixel(515, 304), toPixel(RGB(255, 255, 255)));
  EXPECT_EQ(pixel(715, 304), toPixel(RGB(0, 0, 0)));
}

TEST_F(MainLoop, PaintsAfterTheMoves) {
  login();
  modMain::world.localPlayer.velocity = {100, -50};  // the brakes are on: each axis loses 3 per frame
  modMain::runFrame();
  EXPECT_EQ(modMain::world.debugText.substr(0, 26), "Location: 50.097   49.953\r");
}

TEST_F(MainLoop, TurboStillAppliesInItsLastFrame) {
  login();
  clsPlayer& player = modMain::world.localPlayer;
  player.breaksOn = false;
  player.powerups[turboSlot] = {0, 1, true};
  modMain::world.mousePos = {5722, 0};  // full speed
  modMain::world.steerAngle = 0;
  modMain::world.steerQuadrant = 1;
  modMain::runFrame();
  EXPECT_EQ(player.position, (Vector{50'000, 49'100}));
  EXPECT_FALSE(player.powerups[turboSlot].active);
}

TEST_F(MainLoop, MovesTheOpponents) {
  login();
  join(8, 1, "Bob");
  clsPlayer& bob = modMain::world.opponents[0];
  bob.awaitingFirstPosition = false;
  bob.queuePosition({90'000, 80'000});  // off screen: reached at once
  modMain::runFrame();
  EXPECT_EQ(bob.position, (Vector{90'000, 80'000}));
}

// A charged tail with one second left: the vertex of this frame's step is still laid under it.
TEST_F(MainLoop, OpponentsMoveBeforeTheirPowerupsTick) {
  login();
  join(8, 1, "Bob");
  clsPlayer& bob = modMain::world.opponents[0];
  bob.powerups[chargedTailSlot] = {0, 1, true};
  bob.queuePosition({50'700, 51'400});
  modMain::runFrame();
  EXPECT_FALSE(bob.powerups[chargedTailSlot].active);
  ASSERT_EQ(bob.tailCount(), 1);
  EXPECT_TRUE(bob.tails[0].isCharged());
}

// The right edge of the canvas is 5723 units from its centre, where the local player is. They move 150 to the right,
// which brings a point 5800 from the old position into view. So an opponent there glides instead of jumping.
TEST_F(MainLoop, TheLocalPlayerMovesBeforeTheOpponents) {
  login();
  join(8, 1, "Bob", 52'000, 49'850);
  clsPlayer& bob = modMain::world.opponents[0];
  bob.awaitingFirstPosition = false;
  bob.position = {52'000, 49'850};
  bob.queuePosition({55'800, 49'850});
  modMain::world.localPlayer.breaksOn = false;
  modMain::world.mousePos = {5722, 0};
  modMain::world.steerAngle = 45;
  modMain::world.steerQuadrant = 1;
  modMain::runFrame();
  ASSERT_EQ(modMain::world.localPlayer.position, (Vector{50'150, 49'850}));
  EXPECT_EQ(bob.position, (Vector{52'300, 49'851})) << "3800 / 7, cut to 300, and the side step of 1";
}

TEST_F(MainLoop, BackgroundParticlesAreWrappedBeforeTheyMove) {
  login();
  frmMain->mnuQuarkStars.Checked = false;
  modMain::world.particleCount = 1;
  modMain::world.particles.assign(1, clsParticle{});
  clsParticle& particle = modMain::world.particles[0];
  particle.position = {50'000 - 11'440, 50'000};  // 5 units inside the field
  particle.velocity = {-10, 0};
  particle.maxSpeed = 15;
  particle.fieldWidth = 11'445;
  particle.fieldHeight = 9'120;
  modMain::runFrame();
  EXPECT_EQ(particle.position, (Vector{50'000 - 11'450, 50'000})) << "outside, until the next frame wraps it";
}

TEST_F(MainLoop, MovesTheExplosions) {
  login();
  modMain::world.explosionCount = 1;
  modMain::world.explosionParticles.assign(1, clsParticle{});
  clsParticle& particle = modMain::world.explosionParticles[0];
  particle.type = ParticleType::Explosion;
  particle.position = {50'000, 50'000};
  particle.velocity = {50, -60};
  particle.maxSpeed = 100;
  ASSERT_TRUE(frmMain->mnuQuarkStars.Checked) << "which holds the background alone";
  modMain::runFrame();
  EXPECT_EQ(particle.position, (Vector{50'050, 49'940}));
}

TEST_F(MainLoop, MovesTheServersParticles) {
  login();
  modMain::receiveParticleNew("n", 4, 50'000, 50'000, 0, 0);
  ASSERT_EQ(modMain::world.netParticleCount, 1);
  clsParticle& particle = modMain::world.netParticles[0];
  particle.hasPosition = true;
  particle.positionQueue = {{90'000, 80'000}};  // off screen: reached at once
  modMain::runFrame();
  EXPECT_EQ(particle.position, (Vector{90'000, 80'000}));
}

TEST_F(MainLoop, Q236TheSpareParticlesAreNeverFilled) {
  login();
  join(8, 1, "Bob");
  modMain::addExplosion({50'000, 50'000}, 3);
  modMain::receiveParticleNew("n", 4, 50'000, 50'000, 0, 0);
  modMain::runFrame();
  EXPECT_EQ(modMain::world.spareParticleCount, 0);
  EXPECT_TRUE(modMain::world.spareParticles.empty());

  modMain::world.spareParticleCount = 1;
  modMain::world.spareParticles.assign(1, clsParticle{});
  modMain::world.spareParticles[0].position = {50'000, 50'000};
  modMain::world.spareParticles[0].velocity = {7, -8};
  modMain::world.spareParticles[0].maxSpeed = 15;
  modMain::runFrame();
  EXPECT_EQ(modMain::world.spareParticles[0].position, (Vector{50'007, 49'992}));
}

// A frame with only the local player reads the clock twice, at the beginning and at the end of painting.
class SlowPaint : public HeadlessBackend {
 public:
  Millis paintTime = 0;
  Millis tickCount() override { return ticks += paintTime; }
};

TEST_F(MainLoop, TheFirstFrameRunsAtTimeScaleOneHoweverSlowItsPainting) {
  login();
  modMain::world.particleCount = 0;
  SlowPaint slow;
  slow.pictureSource = machine.pictureSource;
  slow.path = machine.path;
  slow.paintTime = 2020;
  installBackend(&slow);
  clsPlayer& player = modMain::world.localPlayer;
  player.velocity = {100, -50};
  modMain::runFrame();
  EXPECT_EQ(player.velocity, (Vector{97, -47})) << "the brakes take 3 at time scale 1";
  EXPECT_EQ(modMain::world.frameTime, 20) << "2020 / 101, for subsequent frames";
  modMain::runFrame();
  EXPECT_EQ(player.velocity, (Vector{91, -41}));
  installBackend(&machine);
}

TEST_F(MainLoop, ATimeScaleIsATenthOfTheFrameTime) {
  modMain::world.frameTime = 15;
  EXPECT_EQ(modMain::getTimeScale(), 1.5);
  modMain::world.frameTime = 11;
  EXPECT_EQ(modMain::getTimeScale(), 1.1);
  modMain::world.frameTime = 200;
  EXPECT_EQ(modMain::getTimeScale(), 20.0);
}

TEST_F(MainLoop, Q033TheTimeScaleNeverFallsBelowOne) {
  for (std::int32_t frameTime = 0; frameTime <= 10; ++frameTime) {
    modMain::world.frameTime = frameTime;
    EXPECT_EQ(modMain::getTimeScale(), 1.0) << frameTime;
  }
}

TEST_F(MainLoop, TheFirstFrameRunsAtTimeScaleOne) {
  login();
  EXPECT_EQ(modMain::world.frameTime, 0);
  EXPECT_EQ(modMain::getTimeScale(), 1.0);
}

TEST_F(MainLoop, EventsRunOnlyInDoEventsAtTheEndOfThePass) {
  login();
  server().deliver(
      "\x80\x8A"
      "8\x82"
      "1\x82"
      "Bob\x82"
      "100\x82"
      "100\x82"
      "1\x82"
      "0\x81");  // Bob joins as player 8
  modMain::runFrame();
  EXPECT_EQ(modMain::world.opponentCount, 0);
  passEvents();
  EXPECT_EQ(modMain::world.opponentCount, 1);
}

TEST_F(MainLoop, FreesUnloadedFormsAfterDoEvents) {
  frmConnect->Show();
  machine.post([] { frmConnect.unload(); });
  runPasses(2);
  EXPECT_FALSE(frmConnect.isLoaded());
}

TEST_F(MainLoop, NothingCatchesAFault) {
  machine.post([] { raiseOverflow(); });
  EXPECT_THROW(modMain::mainLoop(), RuntimeFault);
}

TEST_F(MainLoop, Q036ClosingTheWindowTellsTheServerNothing) {
  login();
  frmMain->Show();
  machine.journal.clear();
  EXPECT_THROW(frmMain->closedByUser(), ProcessEnded);
  EXPECT_TRUE(server().sent.empty());
  EXPECT_EQ(server().closes, 0);
  EXPECT_EQ(frmMain->sock.State(), sckConnected);
  EXPECT_EQ(machine.journal, std::vector<std::string>{"end"});
}

TEST_F(MainLoop, ExitEndsTheProcessJustAsAbruptly) {
  login();
  machine.journal.clear();
  EXPECT_THROW(frmMain->mnuFileExit.Click(), ProcessEnded);
  EXPECT_TRUE(server().sent.empty());
  EXPECT_EQ(server().closes, 0);
  EXPECT_EQ(machine.journal, std::vector<std::string>{"end"});
}

}  // namespace
}  // namespace kelvora
