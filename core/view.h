#pragma once

#include <cstdint>

#include "base/vector.h"

namespace kelvora {

/// A bearing as the pointer and the steering use it.
struct Bearing {
  float angle = 0;            ///< from the vertical, 350 to the full circle: 0 to 87.5
  std::uint8_t quadrant = 0;  ///< 1 to 4: upper right, upper left, lower left, lower right
};

/// Where things are seen. The local player's position is shown in the centre of the canvas, and one canvas unit is one
/// world unit. Nothing here is cached: the canvas is asked for its size each time.
namespace modMain {

/// Width and height, canvas units.
Vector getCanvasSize();
/// Half the size, rounded down.
Vector getCanvasCentre();
/// The canvas point of a world point; it may lie outside the canvas.
Vector worldToScreen(Vector worldPoint);
/// True if the world point is shown on the canvas, edges included.
bool isOnScreen(Vector worldPoint);
/// The bearing of one canvas point as seen from another.
Bearing getBearing(Vector from, Vector to);
/// The distance of two points, in their own unit.
float getDistance(Vector a, Vector b);

}  // namespace modMain

}  // namespace kelvora
