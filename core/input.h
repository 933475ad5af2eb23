#pragma once

#include <cstdint>

#include "base/vector.h"

namespace kelvora::modMain {

/// The mouse position in canvas units. It keeps its last value when the mouse leaves the canvas.
void setMousePos(float x, float y);
Vector getMousePos();
/// The steering computed when the pointer was last painted; see World.
std::int16_t getSteerAngle();
std::int16_t getSteerQuadrant();

/// Requests the local player's powerup on an F key, 1 to 6. Other numbers do nothing.
void requestPowerup(std::int16_t number);
/// Toggles the local player's brakes.
void toggleLocalBreaks();

}  // namespace kelvora::modMain
