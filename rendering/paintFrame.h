#pragma once

#include <cstdint>

namespace kelvora::modMain {

/// Paints one frame on canvas and radar, presents both, and measures the time for the next frame's time scale. Painting
/// also steers, ages tails and carries out captures.
void paintFrame();

/// The F key, 1 to 6, of the powerup icon at a place on the canvas. 0 if there is none.
std::int16_t actionIconAt(float x, float y);
/// True if the background objects are stars, which are grey and stand still. Otherwise they are quarks, which are
/// coloured and move.
bool isStarsMode();

}  // namespace kelvora::modMain
