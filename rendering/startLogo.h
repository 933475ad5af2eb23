#pragma once

namespace kelvora::modMain {

/// Puts the title on the canvas, with the line that offers to connect, and empties the player list.
void showStartLogo();
/// Clears the canvas for the game and hides the mouse's own pointer.
void hideStartLogo();

}  // namespace kelvora::modMain
