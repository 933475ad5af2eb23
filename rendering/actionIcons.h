#pragma once

#include <cstdint>

/// The row of powerup icons at the canvas's lower right. `clsPlayer::paintPowerupCounts` paints the numbers below it.
namespace kelvora::modMain {

void paintActionIcons();
/// The F key, 1 to 6, of the icon at a place on the canvas (twips). 0 if there is none.
std::int16_t actionIconAt(float x, float y);

}  // namespace kelvora::modMain
