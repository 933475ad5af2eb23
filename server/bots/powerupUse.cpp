// When a bot uses a powerup, and which ones it buys.

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/search.h"
#include "server/bots/mind.h"

namespace kelvora::server {

namespace {

constexpr double pulseReach = 4'000;  // world units, less than the pulse's range
constexpr double laserReach = 20'000;
constexpr double laserHalfWidth = 300;  // world units from the beam within which the ball is certainly hit

}  // namespace

bool Mind::has(const BotView& view, PowerupSlot item) const {
  const std::size_t slot = indexOf(item);
  return skill_.uses[slot] && view.stock[slot] > 0 && !view.isRunning[slot];
}

std::optional<PowerupSlot> Mind::choosePowerup(const BotView& view) {
  if (view.now < nextPowerup_) return std::nullopt;
  const auto distance = [&](const Seen& other) {
    return length(foreseen(other, static_cast<double>(view.delay), skill_.foreseesTurns) - view.position);
  };
  const auto isNear = [&](double reach, auto&& condition) {
    return anyOf(view.others,
                 [&](const Seen& other) { return other.isAlive && distance(other) < reach && condition(other); });
  };
  const auto use = [&](PowerupSlot item) {
    nextPowerup_ = view.now + static_cast<Millis>(between(350, 700)) + skill_.reaction;
    return std::optional(item);
  };
  const auto isBare = [](const Seen& other) { return !other.isRunning[shieldSlot]; };
  const auto anybody = [](const Seen&) { return true; };

  if (has(view, pulseSlot) && view.isRunning[shieldSlot] && isNear(pulseReach, isBare)) return use(pulseSlot);
  if (has(view, shieldSlot)) {
    const bool isShotAt =
        isNear(12'000, [](const Seen& other) { return other.isTailCharged || other.isRunning[laserSlot]; });
    const bool isForPulse = has(view, pulseSlot) && isNear(pulseReach * 1.5, isBare);
    if (isShotAt || isForPulse) return use(shieldSlot);
  }
  if (has(view, laserSlot)) {
    // The beam follows the ball's direction and passes within the opponent's radius.
    const Point beam = towards(angle_);
    const bool isAligned = isNear(laserReach, [&](const Seen& other) {
      const Point way = foreseen(other, static_cast<double>(view.delay) + 60, skill_.foreseesTurns) - view.position;
      return isBare(other) && dot(beam, way) > 0 && std::fabs(cross(beam, way)) < laserHalfWidth;
    });
    if (isAligned) return use(laserSlot);
  }
  if (has(view, turboSlot)) {
    const bool isFar =
        !loop_ && prey_ != 0 && view.now >= restsUntil_ && !isNear(20'000, anybody) && isNear(60'000, anybody);
    if (isFleeing_ || (isFar && chance(0.02))) return use(turboSlot);
  }
  if (has(view, chargedTailSlot) && isNear(4'000, isBare) && chance(0.1)) return use(chargedTailSlot);
  if (has(view, extendedTailSlot) && loop_ && loop_->swept > 1 && isNear(6'000, anybody) && chance(0.05)) {
    return use(extendedTailSlot);
  }
  return std::nullopt;
}

std::optional<PowerupSlot> Mind::wantsToBuy(const BotView& view) {
  // Saves for a shield and a pulse together. The rest is bought as it runs out.
  int total = 0;
  for (const int count : view.stock) total += count;
  if (total >= 4) return std::nullopt;
  constexpr std::array wishes = {turboSlot, shieldSlot, laserSlot, chargedTailSlot, extendedTailSlot, pulseSlot};
  std::array<PowerupSlot, powerupSlotCount> affordable{};
  std::size_t count = 0;
  for (const PowerupSlot item : wishes) {
    const std::size_t slot = indexOf(item);
    if (skill_.uses[slot] && view.stock[slot] == 0 && powerupTable[slot].price <= view.funds)
      affordable[count++] = item;
  }
  if (count == 0) return std::nullopt;
  // A pulse without a shield is suicide.
  const auto pulse = std::find(affordable.begin(), affordable.begin() + static_cast<std::ptrdiff_t>(count), pulseSlot);
  if (pulse != affordable.begin() + static_cast<std::ptrdiff_t>(count) && view.stock[shieldSlot] == 0) {
    if (count == 1) return std::nullopt;
    std::swap(*pulse, affordable[--count]);
  }
  return affordable[static_cast<std::size_t>(between(0, static_cast<double>(count) - 1e-9))];
}

}  // namespace kelvora::server
