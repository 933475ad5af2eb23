// How a bot catches an opponent in a loop of its tail.

#include <algorithm>
#include <limits>
#include <utility>

#include "base/search.h"
#include "server/bots/mind.h"

namespace kelvora::server {

namespace {

constexpr double predictionLimit = 1'500;  // ms for which an opponent's flight is predicted
constexpr double hasty = 450;              // ms; a loop that can be closed within this time is always worth it
constexpr Millis loopPatience = 2'600;

/// The duration of a circle in ms. Its length, measured as |x| + |y|, is eight times the radius.
double roundTrip(double radius, double speed) { return 8 * radius / speed; }

Point clampedInside(Point place, double margin) {
  return {std::clamp(place.x, margin, worldSize - margin), std::clamp(place.y, margin, worldSize - margin)};
}

const Seen* find(const BotView& view, std::int16_t node) {
  const Seen* found = findBy(view.others, &Seen::node, node);
  return found && found->isAlive ? found : nullptr;
}

}  // namespace

void Mind::hunt(const BotView& view) {
  if (view.now < restsUntil_) return rest(view);
  if (skill_.foreseesTurns && closeLoop(view)) return;
  if (loop_) {
    if (find(view, loop_->prey)) return flyLoop(view);
    endLoop(view);
  }
  const Seen* prey = choosePrey(view);
  if (!prey) return wander(view, 0.5);
  approach(view, *prey);
}

const Seen* Mind::choosePrey(const BotView& view) {
  const Seen* prey = find(view, prey_);
  if (prey && view.now < bored_) return prey;
  double nearest = std::numeric_limits<double>::max();
  prey = nullptr;
  for (const Seen& other : view.others) {
    if (!other.isAlive) continue;
    const double distance = length(other.position - view.position) * between(0.8, 1.2);
    if (distance >= nearest) continue;
    nearest = distance;
    prey = &other;
  }
  prey_ = prey ? prey->node : std::int16_t{0};
  bored_ = view.now + static_cast<Millis>(between(3'000, 6'000));
  return prey;
}

bool Mind::closeLoop(const BotView& view) {
  std::optional<Closing> best;
  for (const Seen& other : view.others) {
    if (!other.isAlive || length(other.position - view.position) > 15'000) continue;
    // The opponent moves while the loop is being closed, so each time span has its own prediction.
    for (const auto& [earliest, latest] : {std::pair{0.0, 80.0}, {80.0, 160.0}, {160.0, 280.0}, {280.0, hasty}}) {
      const double ms = (earliest + latest) / 2;
      const Point place = foreseen(other, ms + static_cast<double>(view.delay), true);
      const auto closing = soonestClosing(view.tail, view.position, speed(view), place, earliest, latest,
                                          view.isRunning[extendedTailSlot]);
      if (closing && (!best || closing->ms < best->ms)) best = closing;
      if (closing) break;
    }
  }
  if (!best) return false;
  isClosing_ = true;
  steer(angleOf(best->gate - view.position), throttle());
  return true;
}

void Mind::approach(const BotView& view, const Seen& prey) {
  const double pace = speed(view);
  const bool isLong = view.isRunning[extendedTailSlot];
  const double radius = isLong ? 1.6 * skill_.maxLoopRadius : between(skill_.minLoopRadius, skill_.maxLoopRadius);
  const double late = static_cast<double>(view.delay);
  const auto placeIn = [&](double ms) { return foreseen(prey, (ms + late) * skill_.foresight, skill_.foreseesTurns); };
  const Point centre = clampedInside(placeIn(roundTrip(radius, pace) * 0.85), radius);
  const Point way = centre - view.position;
  if (length(way) < 1.15 * radius) {
    const double side = cross(towards(angle_), way) < 0 ? -1 : 1;
    const Point miss = towards(between(-pi, pi)) * (between(0, skill_.aimError) * radius);
    loop_ = Loop{.prey = prey.node,
                 .centre = centre + miss,
                 .miss = miss,
                 .radius = radius,
                 .side = side,
                 .lastAngle = angleOf(view.position - centre),
                 .since = view.now};
    return flyLoop(view);
  }
  // Where the opponent will be when the loop around them closes.
  double ms = roundTrip(radius, pace);
  for (int i = 0; i < 2; ++i) {
    ms = std::min(predictionLimit,
                  roundTrip(radius, pace) + flightLength(clampedInside(placeIn(ms), radius) - view.position) / pace);
  }
  steer(angleOf(clampedInside(placeIn(ms), radius) - view.position), throttle());
}

void Mind::flyLoop(const BotView& view) {
  Loop& loop = *loop_;
  const Seen& prey = *find(view, loop.prey);
  const double pace = speed(view);
  if (skill_.foresight > 0.5) {
    // The circle follows the opponent as far as it can without breaking the loop.
    const double left = roundTrip(loop.radius, pace) * std::max(0.1, 1 - loop.swept / (2 * pi));
    const Point wish =
        foreseen(prey, (left + static_cast<double>(view.delay)) * skill_.foresight, skill_.foreseesTurns);
    const Point shift = clampedInside(wish + loop.miss, loop.radius) - loop.centre;
    const double maxShift = (skill_.foreseesTurns ? 0.15 : 0.06) * loop.radius;
    loop.centre = loop.centre + shift * std::min(1.0, maxShift / std::max(1.0, length(shift)));
  }
  const Point arm = view.position - loop.centre;
  const double angle = angleOf(arm);
  loop.swept += loop.side * wrapped(angle - loop.lastAngle);
  loop.lastAngle = angle;
  if (loop.swept > 2 * pi + 0.9 || view.now - loop.since > loopPatience || length(arm) > 3 * loop.radius) {
    return endLoop(view);
  }
  if (loop.swept > 1.3 * pi) {
    const auto closing =
        soonestClosing(view.tail, view.position, pace, loop.centre, 0, 700, view.isRunning[extendedTailSlot]);
    if (closing) {
      isClosing_ = true;
      return steer(angleOf(closing->gate - view.position), throttle());
    }
  }
  // Along the circle, turned inward by half of the next step, and back towards the circle if off it.
  const double error = (length(arm) - loop.radius) / loop.radius;
  const double lean = pace * rules::reportInterval * 0.75 / loop.radius / 2 + std::clamp(1.5 * error, -1.0, 1.2);
  steer(angle + loop.side * (pi / 2 + lean), throttle());
}

void Mind::endLoop(const BotView& view) {
  loop_.reset();
  restsUntil_ =
      view.now + static_cast<Millis>(between(static_cast<double>(skill_.minRest), static_cast<double>(skill_.maxRest)));
  restsStill_ = chance(0.5);
  goal_.reset();
}

}  // namespace kelvora::server
