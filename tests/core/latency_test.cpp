#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/gameTest.h"

namespace kelvora {
namespace {

// The mouse moves in the DoEvents at the end of a pass. Passes are counted from the next one, which is the first. Its
// picture shows the pointer at the mouse, and its bearing steers the second pass. Every fourth pass reports.
class Latency : public GameTest {
 protected:
  static constexpr float centreX = 11445.0F / 2;
  static constexpr float centreY = 9120.0F / 2;
  static constexpr int passesOfAReport = 4;

  /// Starts a flight to the right at full speed, `passes` after a report.
  void flyRight(int passes) {
    login();
    modMain::world.localPlayer.breaksOn = false;
    moveMouse(centreX + 4800);
    for (int i = 0; i < 2 * passesOfAReport; ++i) modMain::runFrame();
    while (true) {
      forgetSent();
      modMain::runFrame();
      if (!reports().empty()) break;
    }
    for (int i = 0; i < passes; ++i) modMain::runFrame();
    forgetSent();
  }

  /// Slightly above the centre: exactly beside it, the ball would fly the other way.
  void moveMouse(float x) { frmMain->canvas.MouseMove(0, 0, x, centreY - 300); }

  /// The x of each position report since the last `forgetSent`.
  std::vector<std::string> reports() {
    std::vector<std::string> places;
    for (const WireMessage& message : sentFrames()) {
      if (message.id == wire::msgPositionReport) places.push_back(message.fields[0]);
    }
    return places;
  }

  /// The pass, counted from 1, in which `hasHappened` first holds; 0 if it doesn't within twenty.
  template <class Happened>
  int passOf(const Happened& hasHappened) {
    for (int pass = 1; pass <= 20; ++pass) {
      modMain::runFrame();
      if (hasHappened()) return pass;
    }
    return 0;
  }

  /// The brightest channel of the canvas within the pointer's cell around a position.
  static int brightestNear(float x, float y) {
    const auto& canvas = frmMain->canvas;
    int brightest = 0;
    for (int row = toPixels(y) - 20; row < toPixels(y) + 20; ++row) {
      for (int column = toPixels(x) - 20; column < toPixels(x) + 20; ++column) {
        const Pixel pixel = canvas.pixels()[static_cast<std::size_t>(row * canvas.pixelWidth() + column)];
        brightest = std::max({brightest, static_cast<int>(pixel >> 16), static_cast<int>(pixel >> 8 & 0xFF),
                              static_cast<int>(pixel & 0xFF)});
      }
    }
    return brightest;
  }
};

TEST_F(Latency, NextPassShowsThePointerAtTheMouse) {
  flyRight(0);
  const float left = centreX - 4800;
  ASSERT_LT(brightestNear(left, centreY - 300), 150);
  ASSERT_GT(brightestNear(centreX + 4800, centreY - 300), 150);
  moveMouse(left);
  EXPECT_EQ(passOf([&] { return brightestNear(left, centreY - 300) > 150; }), 1);
}

TEST_F(Latency, TheBallTurnsInTheSecondPass) {
  flyRight(0);
  moveMouse(centreX - 4800);
  const float start = modMain::world.localPlayer.position.x;
  modMain::runFrame();
  const float first = modMain::world.localPlayer.position.x;
  EXPECT_GT(first, start);
  modMain::runFrame();
  EXPECT_LT(modMain::world.localPlayer.position.x, first);
}

TEST_F(Latency, FirstReportComesWithTheTurnOrUpToThreePassesLater) {
  // The mouse moves `phase` passes after a report, and the next report is sent 4 - phase passes later. A report sent in
  // the first pass doesn't include the turn yet. Then the next one does, in the fifth pass.
  constexpr int expected[passesOfAReport] = {4, 3, 2, 5};
  for (int phase = 0; phase < passesOfAReport; ++phase) {
    flyRight(phase);
    moveMouse(centreX - 4800);
    EXPECT_EQ(passOf([&] {
                const bool isLeftward = modMain::world.localPlayer.velocity.x < 0;
                if (!isLeftward) forgetSent();
                return isLeftward && !reports().empty();
              }),
              expected[phase])
        << phase;
  }
}

}  // namespace
}  // namespace kelvora
