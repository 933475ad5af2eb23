#pragma once

namespace kelvora::modMain {

/// Shows the title picture and the line that offers to connect, and clears the player list.
void showStartLogo();
/// Clears the canvas for the game and hides the mouse cursor.
void hideStartLogo();

}  // namespace kelvora::modMain
