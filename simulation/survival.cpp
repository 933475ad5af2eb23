#include "simulation/survival.h"

#include <cstddef>

#include "base/text.h"
#include "core/modMain.h"
#include "core/view.h"
#include "frontend/console.h"

namespace kelvora::modMain {

// Quirk Q-150: nothing turns the mode on. A trigger would set the three survival variables.
bool isSurvivalMode() { return world.survivalMode; }

void checkSurvival() {
  const Vector place = world.localPlayer.position;
  for (std::size_t i = 0, count = static_cast<std::size_t>(world.particleCount); i < count; ++i) {
    // Quirk Q-151: the search continues after a hit, so every particle that touches the player prints the record.
    if (world.localPlayer.getWidth() / 2 >= getDistance(place, world.particles[i].getPosition())) endSurvival();
  }
}

void endSurvival() {
  world.survivalMode = false;
  // Quirk Q-152: the record is kept for the next run, which can only exceed it.
  printChat("Highest distance reached in survival mode was " + numberText(world.survivalMaxDistance), LineType::Plain);
}

}  // namespace kelvora::modMain
