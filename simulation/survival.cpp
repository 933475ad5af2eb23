#include "simulation/survival.h"

#include <cstddef>

#include "base/text.h"
#include "core/modMain.h"
#include "core/view.h"
#include "frontend/console.h"

namespace kelvora::modMain {

namespace {
constexpr std::int16_t consoleLine = 5;
}

// Quirk Q-150: nothing turns the mode on; whoever gives it a trigger sets the three survival variables.
bool isSurvivalMode() { return world.survivalMode; }

void checkSurvival() {
  const Vector place = world.localPlayer.position;
  for (std::size_t i = 0, count = static_cast<std::size_t>(world.particleCount); i < count; ++i) {
    // Quirk Q-151: a hit does not end the search, so that each particle that touches the player tells the record.
    if (world.localPlayer.getWidth() / 2 >= getDistance(place, world.particles[i].getPosition())) endSurvival();
  }
}

void endSurvival() {
  world.survivalMode = false;
  // Quirk Q-152: the record stays for the next run, which can only tell a greater one.
  printChat("Highest distance reached in survival mode was " + numberText(world.survivalMaxDistance), consoleLine);
}

}  // namespace kelvora::modMain
