#include <gtest/gtest.h>

#include <memory>
#include <variant>

#include "bench/surfaceRecorder.h"
#include "core/timeScale.h"
#include "tests/rendering/paintTest.h"

// Which work counts towards the paint time, and how that becomes the time scale.
namespace kelvora {
namespace {

/// Every reading of the clock takes time.
class SlowClock : public HeadlessBackend {
 public:
  Millis perReading = 0;
  Millis tickCount() override { return ticks += perReading; }
};

class FrameClock : public PaintTest {
 protected:
  FrameClock() {
    modMain::world.mousePos = {1000, 1000};
    slow.pictureSource = plainSheet;
    slow.path = machine.path;
    installBackend(&slow);
  }
  ~FrameClock() override { installBackend(&machine); }
  /// The time of a frame of an empty world, which reads the clock twice.
  void paint(Millis ms) {
    slow.perReading = ms;
    modMain::paintFrame();
  }
  SlowClock slow;
};

TEST_F(FrameClock, TheAverageIsOver101Frames) {
  paint(505);
  EXPECT_EQ(modMain::world.frameTimes[0], 505);
  EXPECT_EQ(modMain::world.frameTime, 5) << "505 / 101";
  paint(0);
  EXPECT_EQ(modMain::world.frameTimes[0], 0);
  EXPECT_EQ(modMain::world.frameTimes[1], 505);
  for (int frame = 2; frame <= 100; ++frame) paint(0);
  EXPECT_EQ(modMain::world.frameTimes[100], 505);
  EXPECT_EQ(modMain::world.frameTime, 5) << "still in the sum";
  paint(0);
  EXPECT_EQ(modMain::world.frameTime, 0) << "dropped";
}

TEST_F(FrameClock, TheAverageIsRoundedToTheNearest) {
  paint(50);
  EXPECT_EQ(modMain::world.frameTime, 0) << ".495";
  paint(1);
  EXPECT_EQ(modMain::world.frameTime, 1) << "51 / 101 is .505";
  paint(101);
  EXPECT_EQ(modMain::world.frameTime, 2) << "152 / 101 is 1.505";
}

TEST_F(FrameClock, AverageReachesTheRealTimeOverAHundredFrames) {
  for (int frame = 0; frame < 101; ++frame) paint(20);
  EXPECT_EQ(modMain::world.frameTime, 20);
  EXPECT_EQ(modMain::getTimeScale(), 2);
}

TEST_F(FrameClock, Q126TheTextShowsTheAverageBeforeThisFrame) {
  paint(101 * 12);
  EXPECT_EQ(modMain::world.debugText, "Paint Time:000\r\n");
  paint(0);
  EXPECT_EQ(modMain::world.debugText, "Paint Time:012\r\n");
}

TEST_F(FrameClock, TheCentreMessageAgesByTheTimeScaleBeforeThisFrame) {
  modMain::showCentreMessage("abcd");
  paint(101 * 20);  // the average becomes 20, a time scale of 2
  EXPECT_EQ(modMain::world.centreMessageAge, 1);
  paint(0);
  EXPECT_EQ(modMain::world.centreMessageAge, 3);
}

/// Shows nothing. Records the frame time at each presentation and lets time pass.
class ShowingPeer : public Peer {
 public:
  ShowingPeer(Millis& clock, std::vector<std::int32_t>& frameTimes) : clock_(clock), frameTimes_(frameTimes) {}
  void changed(PropertyId) override {}
  void present() override {
    clock_ += 10'000'000;
    frameTimes_.push_back(modMain::world.frameTime);
  }

 private:
  Millis& clock_;
  std::vector<std::int32_t>& frameTimes_;
};

/// Each kind of work takes its own power of ten, so the digits of a paint time tell how often each was measured: lines,
/// circles, sprites, texts and readings of the clock. Clearing and presenting a surface take far longer.
class PaintTime : public FrameClock {
 protected:
  PaintTime() {
    slow.perReading = 1'000'000;
    recorder.onCall = [this](const bench::DrawingCall& call) { slow.ticks += durationOf(call); };
    for (PictureBox* surface : {&canvas(), &radar()}) {
      surface->peer = std::make_unique<ShowingPeer>(slow.ticks, shownFrameTimes);
    }
  }
  ~PaintTime() override {
    canvas().peer.reset();
    radar().peer.reset();
  }
  static Millis durationOf(const bench::DrawingCall& call) {
    if (std::holds_alternative<bench::LineCall>(call.what)) return 1;
    if (std::holds_alternative<bench::CircleCall>(call.what)) return 100;
    if (std::holds_alternative<bench::SpriteCall>(call.what)) return 1'000;
    if (std::holds_alternative<bench::PrintCall>(call.what)) return 100'000;
    return 10'000'000;
  }
  static void addStar() {
    modMain::world.particles.resize(1);
    modMain::world.particles[0].position = {50000, 50000};
    modMain::world.particles[0].depth = 1;
    modMain::world.particleCount = 1;
  }
  std::int32_t paintAndMeasure() {
    modMain::paintFrame();
    return modMain::world.frameTimes[0];
  }
  std::vector<std::int32_t> shownFrameTimes;
  bench::SurfaceRecorder recorder;
};

// The border has 4 lines. The icons are 6 sprites and the pointer is one. The end of the measurement is one reading of
// the clock.
TEST_F(PaintTime, CountsBorderIconsAndPointerInAnEmptyWorld) { EXPECT_EQ(paintAndMeasure(), 1'007'004); }

// In addition: a star's circle; a server's ball; an opponent with a dot, a ball and a clock reading for the tail's
// ageing; the local player with the same, the 2 lines of the crosshair and 6 stock numbers.
TEST_F(PaintTime, CountsTheWholeWorldButNotClearingTextsOrPresenting) {
  placeLocal().addTail({51000, 50000});
  placeOpponent(cyanPlayer, 52000, 50000).addTail({53000, 50000});
  addStar();
  modMain::receiveParticleNew("n", 4, 50000, 50000, 0, 0);
  modMain::showCentreMessage("abcd");
  EXPECT_EQ(paintAndMeasure(), 3'612'106);
}

// A ghost has no dot, and is painted first.
TEST_F(PaintTime, CountsAGhostThatIsPaintedFirst) {
  clsPlayer& ghost = placeLocal();
  ghost.addTail({51000, 50000});
  ghost.alive = false;
  EXPECT_EQ(paintAndMeasure(), 2'608'006);
}

TEST_F(PaintTime, NewAverageAppliesOnceThePictureIsShown) {
  paintAndMeasure();
  paintAndMeasure();
  // 1007004 / 101 is 9970.3.
  EXPECT_EQ(shownFrameTimes, (std::vector<std::int32_t>{0, 0, 9'970, 9'970}));
}

}  // namespace
}  // namespace kelvora
