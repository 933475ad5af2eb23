#pragma once

/// The survival mode: fly as far from the start as possible without touching a background particle. Nothing in the game
/// turns it on.
namespace kelvora::modMain {

bool isSurvivalMode();  ///< true during a run
/// Calls `endSurvival` for each background particle that touches the local player, if the mode is on.
void checkSurvival();
/// Turns the mode off and prints the record on the console.
void endSurvival();

}  // namespace kelvora::modMain
