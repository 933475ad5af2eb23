#include "core/centreMessage.h"

#include <cstddef>
#include <cstdint>

#include "core/modMain.h"

namespace kelvora::modMain {

void fillTips() {
  // Quirk Q-032: twenty slots for six tips. The other fourteen are shown blank.
  world.tips = {
      "Right-Click to release or engage breaks",
      "Hold down the mouse button to prevent mouse from leaving viewport",
      "Entrap your opponents in a loop of your tail",
      "Spend credits before respawning",
      "Use F-Keys to activate powerups",
      "Shields will not protect from a tail-loop capture",
  };
}

void showCentreMessage(const std::string& text) {
  world.centreMessage = text;
  world.centreMessageAge = 0;
}

void showNextTip() {
  showCentreMessage(world.tips[static_cast<std::size_t>(world.nextTip)]);
  ++world.nextTip;
  if (world.nextTip >= static_cast<std::int16_t>(world.tips.size())) world.nextTip = 0;
}

}  // namespace kelvora::modMain
