// How a bot escapes from danger.

#include <algorithm>
#include <limits>
#include <utility>

#include "base/search.h"
#include "protocol/rules.h"
#include "server/bots/mind.h"

namespace kelvora::server {

namespace {

constexpr double nearby = 12'000;      // world units
constexpr double warning = 600;        // ms before a loop closes
constexpr Millis calm = 600;           // ms without danger after which the next one counts as new
constexpr double ballClearance = 450;  // world units
constexpr int directions = 16;

double safeDistance(std::span<const Point> tail, Point head, Point point) {
  double minimum = length(head - point);
  for (const Point& corner : tail) minimum = std::min(minimum, length(corner - point));
  return minimum;
}

}  // namespace

bool Mind::flee(const BotView& view) {
  const Seen* threat = nullptr;
  std::optional<Closing> soonest;
  Point head;
  const Point own =
      towards(angle_) * (rules::topSpeed * throttle_ * (view.isRunning[turboSlot] ? rules::turboFactor : 1) * 0.75);
  for (const Seen& other : view.others) {
    if (!other.isAlive || skill_.alertness <= 0 || length(other.position - view.position) > nearby) continue;
    const double pace = flightLength(other.velocity);
    if (pace < 5) continue;
    const double late = static_cast<double>(view.delay);
    const Point now = foreseen(other, late, true);
    for (const auto& [earliest, latest] : {std::pair{0.0, 180.0}, {180.0, 360.0}, {360.0, warning}}) {
      const auto closing = soonestClosing(other.tail, now, pace, view.position + own * ((earliest + latest) / 2),
                                          earliest, latest, other.isRunning[extendedTailSlot]);
      if (!closing || (soonest && soonest->ms <= closing->ms)) continue;
      soonest = closing;
      threat = &other;
      head = now;
      break;
    }
  }
  if (!threat) {
    if (view.now - calmSince_ > calm) noticed_ = false;
    return false;
  }
  if (!noticed_ && view.now - calmSince_ > calm) noticed_ = chance(skill_.alertness);
  calmSince_ = view.now;
  if (!noticed_) return false;
  // No need to flee if the bot closes its own loop first.
  if (skill_.foreseesTurns && closeLoop(view)) return true;
  isFleeing_ = true;
  double best = -std::numeric_limits<double>::max();
  double way = angle_;
  const double step =
      rules::topSpeed * throttle() * 0.75 * (view.isRunning[turboSlot] ? rules::turboFactor : 1) * (soonest->ms + 80);
  for (int i = 0; i < directions; ++i) {
    const double angle = angle_ + i * 2 * pi / directions;
    const Point there = view.position + towards(angle) * step;
    double worth = safeDistance(threat->tail.subspan(soonest->vertex), head, there);
    if (isInside(threat->tail, head, *soonest, there)) worth = -worth - worldSize;
    worth -= 300 * std::fabs(wrapped(angle - angle_));
    if (there.x < 0 || there.x > worldSize || there.y < 0 || there.y > worldSize) worth -= 5'000;
    if (worth <= best) continue;
    best = worth;
    way = angle;
  }
  loop_.reset();
  steer(way, throttle());
  return true;
}

void Mind::avoidCharges(const BotView& view) {
  if (skill_.alertness <= 0 || view.isRunning[shieldSlot]) return;
  const double reach = speed(view) * 0.75 * 200;
  const auto isDeadly = [&](double angle) {
    const Point there = view.position + towards(angle) * (reach + ballClearance);
    for (const Seen& other : view.others) {
      if (!other.isAlive || length(other.position - view.position) > 40'000) continue;
      if (other.isTailCharged) {
        for (std::size_t i = 0; i + 1 < other.tail.size(); ++i) {
          if (segmentsCross(view.position, there, other.tail[i], other.tail[i + 1])) return true;
        }
      }
      if (other.isRunning[laserSlot]) {
        const double pace = length(other.velocity);
        if (pace < 1) continue;
        const Point end = other.position + other.velocity * (2 * worldSize / pace);
        if (segmentsCross(view.position, there, other.position, end)) return true;
      }
    }
    return false;
  };
  const bool anything = anyOf(view.others, [](const Seen& other) {
    return other.isAlive && (other.isTailCharged || other.isRunning[laserSlot]);
  });
  if (!anything || !isDeadly(wanted_)) return;
  for (int i = 1; i <= directions / 2; ++i) {
    for (const double side : {1.0, -1.0}) {
      const double angle = wanted_ + side * i * 2 * pi / directions;
      if (!isDeadly(angle)) return steer(angle, throttle_);
    }
  }
}

}  // namespace kelvora::server
