#pragma once

#include <string>

/// The layers of a frame other than players and particles. For this room only.
namespace kelvora::modMain {

void paintWorldBorder();
/// Updates the record of a survival run and draws a line from the local player to the start.
void paintSurvival();
void paintActionIcons();
/// The console's newest seven lines and the debug text.
void paintTextLines();
/// Advances the message's age, and paints the message until it is 250 frames old.
void paintCentreMessage();
/// Adds a line to this frame's debug text, in the upper left corner of the canvas.
void addDebugText(const std::string& line);

}  // namespace kelvora::modMain
