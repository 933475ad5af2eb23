#pragma once

#include <cstdint>

#include "base/vector.h"

namespace kelvora::modMain {

/// Where the mouse is on the canvas, canvas units. It stays where it was when the mouse leaves.
void setMousePos(float x, float y);
Vector getMousePos();
/// The steering that the last paint of the pointer found; see World.
std::int16_t getSteerAngle();
std::int16_t getSteerQuadrant();

/// Asks for a powerup of the local player by its F key's number, 1 to 6; other numbers do nothing.
void requestPowerup(std::int16_t number);
/// Puts the local player's brakes on or off.
void toggleLocalBreaks();

}  // namespace kelvora::modMain
