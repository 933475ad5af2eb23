#pragma once

namespace kelvora::modMain {

/// Runs passes for ever: a frame if the socket is connected, then all events. Does not return.
void mainLoop();
/// One frame: players move, the picture is painted, particles move. Handles no events.
void runFrame();
/// The average paint time in units of 10 ms, at least 1. Every speed per frame is multiplied by it.
double getTimeScale();

}  // namespace kelvora::modMain
