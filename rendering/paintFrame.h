#pragma once

namespace kelvora::modMain {

/// Paints one frame on canvas and radar, presents both, and measures the time for the next frame's time scale. Painting
/// also steers, ages tails and carries out captures.
void paintFrame();

}  // namespace kelvora::modMain
