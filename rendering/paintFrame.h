#pragma once

#include <string>

namespace kelvora::modMain {

/// Paints one frame on canvas and radar, shows both, and measures the time for the next frame's time scale. Painting
/// also steers, ages tails and lands captures.
void paintFrame();

// The layers that belong to no player and no particle.
void paintWorldBorder();
/// Takes the record of the running survival mode and ties the local player to its start by a line.
void paintSurvival();
void paintActionIcons();
/// The console's newest seven lines and the debug text.
void paintTextLines();
/// Counts the message's age and prints the message until it is 250 frames old.
void paintCentreMessage();

/// Adds a line to this frame's text in the upper left corner.
void addDebugText(const std::string& line);
/// True if the background objects are stars, which are grey and stand still; else they are coloured and fly.
bool isStarsMode();

}  // namespace kelvora::modMain
