#pragma once

namespace kelvora::modMain {

/// Runs frames forever: a frame if the socket is connected, then all events. Never returns.
void mainLoop();
/// Runs one frame: moves players, paints, moves particles. Processes no events.
void runFrame();

}  // namespace kelvora::modMain
