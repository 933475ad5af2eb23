#pragma once

namespace kelvora {

struct Bearing;

namespace modMain {

/// The cell of the pointer's sheet for a bearing; the twelve run clockwise from straight up.
int pointerFrame(const Bearing& bearing);
/// Paints the pointer at the mouse and steers: its bearing is what the next frame's movement reads.
void paintPointer();

}  // namespace modMain

}  // namespace kelvora
