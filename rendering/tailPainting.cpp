#include <algorithm>
#include <cmath>
#include <cstddef>

#include "base/fault.h"
#include "base/numbers.h"
#include "core/chance.h"
#include "core/view.h"
#include "frontend/frmMain.h"
#include "simulation/clsPlayer.h"
#include "simulation/clsTail.h"
#include "simulation/killerTails.h"

namespace kelvora {

namespace {

constexpr double minWidth = 1;  // pixels
constexpr double maxWidth = 30;

/// The offset between the two ends of an arc's stroke on one axis.
float strokeOffset() {
  const int distance = drawBelow(500) + 10;
  return static_cast<float>(modMain::coinFlip() ? -distance : distance);
}

}  // namespace

Colour clsTail::getColour(PlayerColour colour) const {
  const int value = 255 - age_;
  if (value < 0) raiseOverflow();
  switch (colour) {
    case redPlayer:
      return RGB(value, 0, 0);
    case yellowPlayer:
      return RGB(value, value, 0);
    case greenPlayer:
      return RGB(0, value, 0);
    case cyanPlayer:
      return RGB(0, value, value);
    case bluePlayer:
      return RGB(0, 0, value);
    case purplePlayer:
      return RGB(value, 0, value);
    default:
      return RGB(0, 0, 0);
  }
}

// A capture carried out during the walk changes players and messages, but no tail.
//
// Quirk Q-243: only painting ages a tail and carries out its captures. If a player isn't painted, their tail stands
// still, and so do the captures that wait for its end.
void clsPlayer::paintTail() {
  ageTails();
  PictureBox& canvas = frmMain->canvas;
  for (std::size_t i = tails.size(); i-- > 1;) {
    const clsTail& newer = tails[i];
    const clsTail& older = tails[i - 1];
    // Quirk Q-132: only the newer end counts, so at the canvas's edge a tail ends one segment early.
    if (modMain::isOnScreen(newer.getPosition())) {
      const Vector a = modMain::worldToScreen(newer.getPosition());
      const Vector b = modMain::worldToScreen(older.getPosition());
      canvas.ForeColor = newer.getColour(colour);
      canvas.DrawWidth = static_cast<int>(std::clamp(roundToEven(static_cast<double>(i) / 10), minWidth, maxWidth));
      canvas.Line(a.x, a.y, b.x, b.y);
      canvas.DrawWidth = 1;
      if (newer.isCharged()) paintChargedArc(newer.getPosition(), older.getPosition());
    }
    // Quirk Q-105: always owner 0, whoever owns this tail. A capture by the player in slot 0 is carried out at the next
    // paint, all others when their vertex expires.
    modMain::checkKillerTail(0, older.tailID());
  }
}

void clsPlayer::paintChargedArc(Vector a, Vector b) {
  a = modMain::worldToScreen(a);
  b = modMain::worldToScreen(b);
  if (a.x == b.x) a.x += 1;
  const double slope = (static_cast<double>(a.y) - b.y) / (static_cast<double>(a.x) - b.x);
  // Quirk Q-303: a vertex may be arbitrarily far away, and a slope too steep is a fault.
  const float offset = toSingle(a.y - a.x * slope);
  const float low = a.x < b.x ? a.x : b.x;
  const float high = a.x < b.x ? b.x : a.x;

  // Quirk Q-130: the inner random number is passed as an argument instead of multiplied, so the lightning starts at the
  // segment's left end or one unit next to it. A negative argument restarts the generator.
  const float argument = Rnd() * high;
  Vector start;
  start.x = std::floor(Rnd(argument) + low);
  start.y = toSingle(start.x * slope + offset);
  PictureBox& canvas = frmMain->canvas;
  for (int i = 0; i < 4; ++i) {
    const float dx = strokeOffset();
    const float dy = strokeOffset();
    const Vector end{start.x + dx, start.y + dy};
    const int grey = 255 - i * 60;
    canvas.ForeColor = RGB(grey, grey, grey);
    canvas.DrawWidth = 1;
    canvas.Line(start.x, start.y, end.x, end.y);
    start = end;
  }
}

}  // namespace kelvora
