#pragma once

#include "server/bots/mind.h"

namespace kelvora::server {

/// A person who has just learned to play: sees the world with a delay of 300 ms, flies to the nearest opponent at seven
/// tenths of full speed, and circles there with an unsteady hand.
class Beginner {
 public:
  static constexpr Millis reaction = 300;

  explicit Beginner(std::uint32_t seed) : random_(seed) {}

  Intent think(const BotView& view) {
    const Seen* nearest = nullptr;
    for (const Seen& other : view.others) {
      if (!other.isAlive) continue;
      if (!nearest || length(other.position - view.position) < length(nearest->position - view.position)) {
        nearest = &other;
      }
    }
    double wanted = angle_ + 0.05;
    if (nearest) {
      const Point arm = view.position - nearest->position;
      const double error = (length(arm) - radius) / radius;
      wanted = angleOf(arm) + pi / 2 + 0.15 + std::clamp(error, -0.8, pi / 2 - 0.15);
    }
    hand_ += -0.1 * hand_ + std::normal_distribution(0.0, 0.07)(random_);
    angle_ = wrapped(angle_ + std::clamp(wrapped(wanted + hand_ - angle_), -0.32, 0.32));
    return {.angle = angle_, .throttle = 0.7};
  }

 private:
  static constexpr double radius = 2'800;

  std::mt19937 random_;
  double angle_ = 0;
  double hand_ = 0;
};

}  // namespace kelvora::server
