#pragma once

#include <cstdint>
#include <string>

namespace kelvora::modMain {

/// Paints one frame on canvas and radar, presents both, and measures the time for the next frame's time scale. Painting
/// also steers, ages tails and carries out captures.
void paintFrame();

// Layers other than players and particles.
void paintWorldBorder();
/// Updates the record of a survival run and draws a line from the local player to the start.
void paintSurvival();
void paintActionIcons();
/// The F key, 1 to 6, of the powerup icon at a place on the canvas. 0 if there is none.
std::int16_t actionIconAt(float x, float y);
/// The console's newest seven lines and the debug text.
void paintTextLines();
/// Advances the message's age, and paints the message until it is 250 frames old.
void paintCentreMessage();

/// Adds a line to this frame's text in the upper left corner of the canvas.
void addDebugText(const std::string& line);
/// True if the background objects are stars, which are grey and stand still. Otherwise they are quarks, which are
/// coloured and move.
bool isStarsMode();

}  // namespace kelvora::modMain
