#pragma once

#include <cstdint>

#include "base/vector.h"

namespace kelvora {

struct Bearing;

namespace modMain {

/// The mouse position in canvas units. It keeps its last value when the mouse leaves the canvas.
void setMousePos(float x, float y);
Vector getMousePos();
/// Steers the local player toward the mouse, from the next frame's movement on. Returns the mouse's bearing from the
/// canvas's centre.
Bearing steerToMouse();
/// The steering since the last call of `steerToMouse`; see World.
std::int16_t getSteerAngle();
std::int16_t getSteerQuadrant();

/// Requests the local player's powerup on an F key, 1 to 6. Other numbers do nothing.
void requestPowerup(std::int16_t number);
/// Toggles the local player's brakes.
void toggleLocalBreaks();

}  // namespace modMain

}  // namespace kelvora
