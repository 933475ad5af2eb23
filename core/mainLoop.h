#pragma once

namespace kelvora::modMain {

/// Runs frames for ever: a frame if the socket is connected, then all events. Never returns.
void mainLoop();
/// Runs one frame: moves players, paints, moves particles. Processes no events.
void runFrame();
/// The average paint time in units of 10 ms, at least 1. It multiplies every speed per frame.
double getTimeScale();

}  // namespace kelvora::modMain
