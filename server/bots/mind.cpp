#include "server/bots/mind.h"

#include <algorithm>

#include "protocol/rules.h"

namespace kelvora::server {

Intent Mind::think(const BotView& view) {
  brakes_ = false;
  isClosing_ = false;
  isFleeing_ = false;
  if (!view.isAlive) {
    loop_.reset();
    wander(view, 0.4);
  } else if (!flee(view)) {
    hunt(view);
  }
  if (view.isAlive) avoidCharges(view);
  // Imitates a hand, which errs by a slowly changing amount and can't turn at once.
  wobble_ += -0.1 * wobble_ + std::normal_distribution(0.0, 0.45 * skill_.wobble)(random_);
  const double maxTurn = skill_.turnRate * rules::reportInterval / 1000;
  angle_ = wrapped(angle_ + std::clamp(wrapped(wanted_ + wobble_ - angle_), -maxTurn, maxTurn));
  return {.angle = angle_,
          .throttle = throttle_,
          .brakes = brakes_,
          .powerup = view.isAlive ? choosePowerup(view) : std::nullopt};
}

void Mind::triumph(Millis now) {
  loop_.reset();
  goal_.reset();
  prey_ = 0;
  restsStill_ = false;
  restsUntil_ = now + static_cast<Millis>(between(0.7, 1.5) * static_cast<double>(skill_.triumph));
}

void Mind::forget() {
  loop_.reset();
  prey_ = 0;
  goal_.reset();
  restsUntil_ = 0;
  noticed_ = false;
}

void Mind::steer(double angle, double throttle) {
  wanted_ = angle;
  throttle_ = throttle;
}

double Mind::speed(const BotView& view) const {
  return rules::topSpeed * skill_.throttle * (view.isRunning[turboSlot] ? rules::turboFactor : 1);
}

}  // namespace kelvora::server
