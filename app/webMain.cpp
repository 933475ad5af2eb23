#include <cstdint>

#include "core/input.h"
#include "core/startUp.h"
#include "platform/web/webBackend.h"
#include "platform/web/webPeer.h"
#include "rendering/paintFrame.h"

namespace modMain = kelvora::modMain;

namespace {

// A finger on a powerup's icon fires it, as its key does.
bool touchIcon(float x, float y) {
  const std::int16_t icon = modMain::actionIconAt(x, y);
  modMain::requestPowerup(icon);
  return icon > 0;
}

}  // namespace

int main() {
  kelvora::setTouchHandler(touchIcon);
  kelvora::runInPage(modMain::startGame);
}
