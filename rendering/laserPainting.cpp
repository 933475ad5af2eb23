#include "base/fault.h"
#include "base/numbers.h"
#include "core/chance.h"
#include "core/modMain.h"
#include "core/view.h"
#include "frontend/frmMain.h"
#include "protocol/rules.h"
#include "simulation/clsPlayer.h"

namespace kelvora {

namespace {

/// The end of the beam from `from` through `to`: a point on the world's edge.
Vector laserHit(Vector from, Vector to) {
  constexpr double size = rules::worldSize;
  const double slope = (static_cast<double>(to.y) - from.y) / (static_cast<double>(to.x) - from.x);
  // Quirk Q-302: the slope is unbounded, and a hit too far away for single precision is a fault.
  const float offset = toSingle(to.y - to.x * slope);
  const Vector candidates[] = {{toSingle(-offset / slope), 0},
                               {0, offset},
                               {toSingle((size - offset) / slope), rules::worldSize},
                               {rules::worldSize, toSingle(size * slope + offset)}};
  // Quirk Q-131: each candidate is checked against one bound only, and the last valid one wins. Without a valid one the
  // beam ends at the world's origin.
  const bool inside[] = {candidates[0].x >= 0, candidates[1].y >= 0, candidates[2].x <= rules::worldSize,
                         candidates[3].y <= rules::worldSize};
  Vector hit;
  for (int i = 0; i < 4; ++i) {
    const Vector& point = candidates[i];
    const bool behindX = from.x <= to.x ? point.x < from.x : point.x > from.x;
    const bool behindY = from.y <= to.y ? point.y < from.y : point.y > from.y;
    if (inside[i] && !behindX && !behindY) hit = point;
  }
  return hit;
}

}  // namespace

void clsPlayer::paintLaser() {
  Vector from = lastPosition;
  if (from == position) return;
  // Quirk Q-241: a straight flight is tilted by one unit so that it has a slope. The beam leans by that unit for every
  // length of the last frame's flight.
  if (from.x == position.x) {
    from.x += 1;
  } else if (from.y == position.y) {
    from.y += 1;
  }
  const Vector begin = modMain::worldToScreen(position);
  const Vector end = modMain::worldToScreen(laserHit(from, position));
  const int width = drawBelow(5) + 3;
  PictureBox& canvas = frmMain->canvas;
  const auto beam = [&] { canvas.Line(begin.x, begin.y, end.x, end.y); };
  canvas.DrawWidth = width;
  canvas.ForeColor = RGB(255, 255, 255);
  resumeNext(beam);
  canvas.DrawWidth = 2;
  canvas.ForeColor = RGB(0, 255, 0);
  resumeNext(beam);
}

}  // namespace kelvora
