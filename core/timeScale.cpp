#include "core/timeScale.h"

#include <algorithm>

#include "core/modMain.h"

namespace kelvora::modMain {

// Quirk Q-033: at least 1. A machine that paints in less than 10 ms runs the game faster, not smoother.
double getTimeScale() { return std::max(world.frameTime / 10.0, 1.0); }

}  // namespace kelvora::modMain
