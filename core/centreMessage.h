#pragma once

#include <string>

namespace kelvora::modMain {

/// Fills `tips` with the tips that the game gives.
void fillTips();
/// Shows a text in the middle of the canvas from now on, in place of the one before.
void showCentreMessage(const std::string& text);
/// Shows the next of the twenty tips, and after the last one the first.
void showNextTip();

}  // namespace kelvora::modMain
