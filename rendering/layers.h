#pragma once

#include <string>

#include "raster/colour.h"

/// The layers of a frame other than players, particles and icons, and printing on the canvas. For this room only.
namespace kelvora::modMain {

void paintWorldBorder();
/// Updates the record of a survival run and draws a line from the local player to the start.
void paintSurvival();
/// The console's newest seven lines and the debug text.
void paintTextLines();
/// Advances the message's age, and paints the message until it is 250 frames old.
void paintCentreMessage();
/// Adds a line to this frame's debug text, in the upper left corner of the canvas.
void addDebugText(const std::string& line);
/// Prints text on the canvas, with its upper left corner at this place (twips).
void printOnCanvas(float x, float y, Colour colour, const std::string& text);

}  // namespace kelvora::modMain
