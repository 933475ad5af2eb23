#include "core/view.h"

#include <cmath>

#include "core/modMain.h"
#include "frontend/frmMain.h"

namespace kelvora::modMain {

namespace {

/// Half a length, rounded down. Lengths are never negative, so the cast is the floor, ten times as fast. This runs
/// several times for everything in the world.
float wholeHalf(float length) { return static_cast<float>(static_cast<int>(length / 2)); }

/// The canvas point of a world point on a canvas of the given size.
Vector placeOn(Vector size, Vector worldPoint) {
  const Vector& eye = world.localPlayer.position;
  return {wholeHalf(size.x) - (eye.x - worldPoint.x), wholeHalf(size.y) - (eye.y - worldPoint.y)};
}

}  // namespace

Vector getCanvasSize() {
  const PictureBox& canvas = frmMain->canvas;
  return {canvas.Width, canvas.Height};
}

Vector getCanvasCentre() {
  const Vector size = getCanvasSize();
  return {wholeHalf(size.x), wholeHalf(size.y)};
}

Vector worldToScreen(Vector worldPoint) { return placeOn(getCanvasSize(), worldPoint); }

bool isOnScreen(Vector worldPoint) {
  const Vector size = getCanvasSize();
  const Vector point = placeOn(size, worldPoint);
  return 0 <= point.x && point.x <= size.x && 0 <= point.y && point.y <= size.y;
}

Bearing getBearing(Vector from, Vector to) {
  const float across = to.x - from.x;
  float up = from.y - to.y;
  if (up == 0) up = 0.0001F;
  const float radians = static_cast<float>(std::atan(static_cast<double>(across) / up));
  Bearing bearing;
  // Quirk Q-098: the full circle has 350 parts, so a right angle is 87.5. The steering and the pointer's bands rely on
  // it.
  bearing.angle = static_cast<float>(std::fabs(radians * 350.0 / 6.283185308));
  // Quirk Q-091: bearings along an axis count as quadrant 1, so straight below and straight left steer the opposite
  // way.
  bearing.quadrant = 1;
  if (to.y > from.y && to.x > from.x) bearing.quadrant = 4;
  if (to.y < from.y && to.x < from.x) bearing.quadrant = 2;
  if (to.y > from.y && to.x < from.x) bearing.quadrant = 3;
  return bearing;
}

float getDistance(Vector a, Vector b) {
  const double dx = std::fabs(a.x - b.x);
  const double dy = std::fabs(a.y - b.y);
  return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

}  // namespace kelvora::modMain
