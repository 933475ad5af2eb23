#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "core/timeScale.h"
#include "protocol/powerupTable.h"
#include "protocol/rules.h"
#include "protocol/wireFormat.h"
#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

constexpr Millis hour = 3'600'000;

/// A running game on a machine whose clocks misbehave.
class ClockFaults : public GameTest {
 protected:
  /// Runs passes of the frame loop at the design pace.
  void play(int frames) {
    for (int i = 0; i < frames; ++i) {
      tick(10);
      modMain::runFrame();
      passEvents();
    }
  }
  /// Moves the opponent to a visible point near the last one, where the ball lays a vertex.
  void report(std::int16_t node, float x, float y = 50'000) {
    serverSends(wire::msgPosition, {std::to_string(node), std::to_string(x), std::to_string(y)});
  }
  static clsPlayer& local() { return modMain::world.localPlayer; }
};

TEST_F(ClockFaults, AnHourOfSuspensionAgesNoTailAndTakesOneSecondOffAPowerup) {
  login();
  clsPlayer& bob = modMain::playerAt(join(8, 1, "Bob"));
  report(8, 50'100);
  play(1);
  ASSERT_EQ(bob.tailCount(), 1);
  play(99);
  serverSends(wire::msgPowerupOn, {"7", std::to_string(shieldSlot)});
  play(2);
  // The first pass starts the player's clock, the second stamps the vertex: a hundred frames have counted.
  ASSERT_EQ(bob.tails[0].getAge(), 100);
  const std::int16_t left = local().powerups[shieldSlot].timeLeft;
  const Vector before = local().position;

  tick(hour);
  play(1);
  EXPECT_EQ(bob.tails[0].getAge(), 100) << "a gap above 32 s is not counted";
  EXPECT_EQ(local().powerups[shieldSlot].timeLeft, left - 1) << "however many seconds, they are one tick";
  EXPECT_LE(std::fabs(local().position.x - before.x), 300.0F) << "one frame's flight";
  EXPECT_LE(std::fabs(local().position.y - before.y), 300.0F);
  EXPECT_EQ(modMain::getTimeScale(), 1.0);

  play(103);
  EXPECT_EQ(bob.tailCount(), 0) << "and from then on it ages normally";
}

TEST_F(ClockFaults, TimersThatMissedAnHourFireOnce) {
  frmMain->Show();
  int fired = 0;
  frmMain->tmrCheckNetStatus.Timer = [&fired] { ++fired; };
  passEvents();
  fired = 0;
  tick(hour);
  for (int pass = 0; pass < 50; ++pass) passEvents();
  EXPECT_EQ(fired, 1);
  tick(1'000);
  passEvents();
  EXPECT_EQ(fired, 2);
}

TEST_F(ClockFaults, Q047OnlyPowerupsWaitForAClockSetBack) {
  login();
  clsPlayer& bob = modMain::playerAt(join(8, 1, "Bob"));
  report(8, 50'100);
  serverSends(wire::msgPowerupOn, {"7", std::to_string(shieldSlot)});
  play(1);
  const std::int16_t left = local().powerups[shieldSlot].timeLeft;
  machine.seconds -= 10;
  play(900);
  EXPECT_EQ(local().powerups[shieldSlot].timeLeft, left) << "9 s later";
  EXPECT_EQ(bob.tailCount(), 0) << "a tail lives two seconds of the tick count";
  play(200);
  EXPECT_EQ(local().powerups[shieldSlot].timeLeft, left - 1) << "11 s: one frame starts the clock";
}

TEST_F(ClockFaults, ServerEndsPowerupsEvenAfterTheClockWasSetBack) {
  login();
  serverSends(wire::msgPowerupOn, {"7", std::to_string(shieldSlot)});
  machine.seconds -= 3'600;
  play(10);
  serverSends(wire::msgPowerupOff, {"7", std::to_string(shieldSlot)});
  EXPECT_FALSE(local().powerups[shieldSlot].active);
}

TEST_F(ClockFaults, PlayContinuesThroughMidnight) {
  login();
  clsPlayer& bob = modMain::playerAt(join(8, 1, "Bob"));
  machine.seconds = 86'399.5;
  for (int i = 0; i < 200; ++i) {
    if (machine.seconds >= 86'400) machine.seconds -= 86'400;
    if (i % 10 == 0) report(8, 50'000 + static_cast<float>(i));
    play(1);
  }
  EXPECT_LT(machine.seconds, 2);
  EXPECT_GT(bob.tailCount(), 0);
  forgetSent();
  machine.seconds = 0.25;
  serverSends(wire::msgPing, {"86400"});
  ASSERT_FALSE(sentFrames().empty());
  EXPECT_EQ(sentFrames()[0], (WireMessage{wire::msgPingReply, {".25"}}));
  EXPECT_EQ(local().clockOffset, 0.25F - 86'400);
}

/// The tick count passes a number at which a narrower counter would wrap around.
class Uptime : public ClockFaults, public ::testing::WithParamInterface<Millis> {};

TEST_P(Uptime, MakesNoDifferenceInPlay) {
  machine.ticks = GetParam() - 1'000;
  login();
  clsPlayer& bob = modMain::playerAt(join(8, 1, "Bob"));
  report(8, 50'100);
  play(90);
  ASSERT_EQ(bob.tailCount(), 1);
  serverSends(wire::msgPing, {"1"});
  play(25);
  ASSERT_GT(machine.ticks, GetParam());
  serverSends(wire::msgLatencyReport, {"40"});
  EXPECT_EQ(frmMain->lblLag.Caption.get(), "250/40");
  // The first pass starts the player's clock, the second stamps the vertex, and 113 frames make 56 steps of 20 ms.
  EXPECT_EQ(bob.tails[0].getAge(), 112);
  EXPECT_EQ(modMain::world.frameTime, 0);
  play(87);
  EXPECT_EQ(bob.tailCount(), 1) << "200 units of age";
  play(2);
  EXPECT_EQ(bob.tailCount(), 0);
  EXPECT_TRUE(local().isConnected);
}

INSTANTIATE_TEST_SUITE_P(Counts, Uptime,
                         ::testing::Values(Millis{std::numeric_limits<std::int32_t>::max()} + 1,
                                           Millis{std::numeric_limits<std::uint32_t>::max()} + 1,
                                           Millis{1'000} * 365 * 24 * 3'600'000),
                         [](const auto& instance) { return "Number" + std::to_string(instance.index); });

/// A machine that was stopped while painting a frame.
class StoppedPaint : public HeadlessBackend {
 public:
  Millis stop = 0;
  Millis tickCount() override {
    const Millis now = ticks;
    ticks += std::exchange(stop, 0);
    return now;
  }
};

class StopInPaint : public ClockFaults {
 protected:
  StopInPaint() {
    stopped.pictureSource = machine.pictureSource;
    stopped.path = machine.path;
  }
  ~StopInPaint() override { installBackend(&machine); }
  /// Like `play`, on the machine that can stop.
  void playOn(int frames) {
    for (int i = 0; i < frames; ++i) {
      stopped.advance(10);
      modMain::runFrame();
    }
  }
  StoppedPaint stopped;
};

TEST_F(StopInPaint, AnHourOnlySpeedsUpTheNextHundredFrames) {
  login();
  for (std::int16_t slot = 0; slot < 3; ++slot) {
    join(static_cast<std::int16_t>(8 + slot), static_cast<std::int16_t>(1 + slot), "Bob");
  }
  for (int i = 0; i < 30; ++i) {
    for (std::int16_t node = 8; node < 11; ++node) report(node, 50'000 + 600 * static_cast<float>(i + node));
  }
  serverSends(wire::msgParticleAdd, {"p", "1", "50000", "50000", "300", "-400"});
  serverSends(wire::msgPowerupOn, {"7", std::to_string(turboSlot)});
  play(20);
  local().breaksOn = false;
  modMain::world.mousePos = {6'000, 2'000};
  stopped.ticks = machine.ticks;
  stopped.seconds = machine.seconds;
  installBackend(&stopped);
  stopped.stop = hour;
  playOn(1);
  EXPECT_EQ(modMain::world.frameTimes[0], hour);
  EXPECT_EQ(modMain::world.frameTime, 35'644) << "3600000 / 101";
  for (int frame = 0; frame < 100; ++frame) {
    playOn(1);
    for (const clsPlayer* player : {&local(), &modMain::playerAt(0), &modMain::playerAt(1)}) {
      ASSERT_GE(player->position.x, 0) << frame;
      ASSERT_LE(player->position.x, rules::worldSize) << frame;
      ASSERT_GE(player->position.y, 0) << frame;
      ASSERT_LE(player->position.y, rules::worldSize) << frame;
    }
  }
  EXPECT_EQ(modMain::world.frameTime, 35'644) << "the long frame is the oldest of the 101";
  playOn(1);
  EXPECT_EQ(modMain::world.frameTime, 0);
  EXPECT_EQ(modMain::getTimeScale(), 1.0);
}

}  // namespace
}  // namespace kelvora
