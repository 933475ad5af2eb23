#pragma once

namespace kelvora {

struct Bearing;

namespace modMain {

/// The cell of the pointer's sheet for a bearing. The twelve cells run clockwise from straight up.
int pointerFrame(const Bearing& bearing);
/// Paints the pointer at the mouse position and steers: the next frame's movement uses its bearing.
void paintPointer();

}  // namespace modMain

}  // namespace kelvora
