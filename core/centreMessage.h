#pragma once

#include <string>

namespace kelvora::modMain {

/// Fills `tips` with the game's tips.
void fillTips();
/// Shows a text in the middle of the canvas, replacing the previous one.
void showCentreMessage(const std::string& text);
/// Shows the next of the twenty tips. The first follows the last.
void showNextTip();

}  // namespace kelvora::modMain
