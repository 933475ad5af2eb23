#pragma once

#include <cstdint>

#include "base/vector.h"

namespace kelvora {

/// A bearing, used by the pointer and the steering.
struct Bearing {
  float angle = 0;            ///< from the vertical, 0 to 87.5 on a scale of 350 to the full circle
  std::uint8_t quadrant = 0;  ///< 1 to 4: upper right, upper left, lower left, lower right
};

/// The view of the world. The local player is in the centre of the canvas, and one canvas unit is one world unit.
/// Nothing is cached: the canvas is asked for its size each time.
namespace modMain {

/// Width and height in canvas units.
Vector getCanvasSize();
/// Half the size in canvas units, rounded down.
Vector getCanvasCentre();
/// The canvas point of a world point; it may lie outside the canvas.
Vector worldToScreen(Vector worldPoint);
/// True if the world point is on the canvas, including its edges.
bool isOnScreen(Vector worldPoint);
/// The bearing from one canvas point to another.
Bearing getBearing(Vector from, Vector to);
/// The distance between two points, in their unit.
float getDistance(Vector a, Vector b);

}  // namespace modMain

}  // namespace kelvora
