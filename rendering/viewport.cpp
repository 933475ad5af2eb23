#include <cmath>

#include "core/modMain.h"
#include "frontend/frmMain.h"

namespace kelvora::modMain {

Vector getCanvasCentre() {
  const PictureBox& canvas = frmMain->canvas;
  return {std::floor(canvas.Width / 2), std::floor(canvas.Height / 2)};
}

Vector worldToScreen(Vector worldPoint) {
  const Vector centre = getCanvasCentre();
  const Vector& eye = localPlayer.position;
  return {centre.x - (eye.x - worldPoint.x), centre.y - (eye.y - worldPoint.y)};
}

Bearing getBearing(Vector from, Vector to) {
  const float across = to.x - from.x;
  float up = from.y - to.y;
  if (up == 0) up = 0.0001F;
  const float radians = static_cast<float>(std::atan(static_cast<double>(across) / up));
  Bearing bearing;
  // Quirk Q-098: the full circle has 350 parts and not 360, so a right angle is 87.5; the steering and the bands of the
  // pointer's frames count on it.
  bearing.angle = static_cast<float>(std::fabs(radians * 350.0 / 6.283185308));
  // Quirk Q-091: exactly above, below, left or right is quadrant 1, so straight below and straight left steer the
  // opposite way.
  bearing.quadrant = 1;
  if (to.y > from.y && to.x > from.x) bearing.quadrant = 4;
  if (to.y < from.y && to.x < from.x) bearing.quadrant = 2;
  if (to.y > from.y && to.x < from.x) bearing.quadrant = 3;
  return bearing;
}

}  // namespace kelvora::modMain
