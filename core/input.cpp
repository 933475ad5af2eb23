#include "core/input.h"

#include "base/numbers.h"
#include "core/modMain.h"
#include "core/view.h"

namespace kelvora::modMain {

void setMousePos(float x, float y) { world.mousePos = {x, y}; }

Vector getMousePos() { return world.mousePos; }

Bearing steerToMouse() {
  const Bearing bearing = getBearing(getCanvasCentre(), world.mousePos);
  world.steerQuadrant = bearing.quadrant;
  world.steerAngle = toInt16(bearing.angle);
  return bearing;
}

std::int16_t getSteerAngle() { return world.steerAngle; }
std::int16_t getSteerQuadrant() { return world.steerQuadrant; }

void requestPowerup(std::int16_t number) {
  const auto slot = static_cast<PowerupSlot>(number - 1);
  if (isSlot(slot)) world.localPlayer.requestActivatePowerup(slot);
}

void toggleLocalBreaks() { world.localPlayer.toggleBreaks(); }

}  // namespace kelvora::modMain
