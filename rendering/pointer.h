#pragma once

namespace kelvora {

struct Bearing;

namespace modMain {

/// The cell of the pointer's sheet for a bearing; the twelve run clockwise from straight up.
int pointerFrame(const Bearing& bearing);

}  // namespace modMain

}  // namespace kelvora
