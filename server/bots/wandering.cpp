// How a bot flies without prey.

#include "server/bots/mind.h"

namespace kelvora::server {

void Mind::wander(const BotView& view, double throttle) {
  if (!goal_ || length(*goal_ - view.position) < 4'000) {
    constexpr double margin = 8'000;
    goal_ = Point{between(margin, worldSize - margin), between(margin, worldSize - margin)};
  }
  steer(angleOf(*goal_ - view.position), throttle);
}

void Mind::rest(const BotView& view) {
  if (restsStill_ && skill_.restThrottle < 0.3) {
    brakes_ = true;
    throttle_ = 0;
    return;
  }
  wander(view, skill_.restThrottle);
}

}  // namespace kelvora::server
