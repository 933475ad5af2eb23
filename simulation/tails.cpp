#include <cstddef>

#include "base/fault.h"
#include "base/numbers.h"
#include "base/text.h"
#include "core/bounds.h"
#include "core/chance.h"
#include "core/modMain.h"
#include "core/players.h"
#include "protocol/rules.h"
#include "simulation/clsPlayer.h"
#include "simulation/clsTail.h"
#include "simulation/killerTails.h"

namespace kelvora {

namespace {

constexpr Millis maxStep = 32001;  // ms; a vertex that was never stepped, with a tick of 0, exceeds it too
constexpr Millis minStep = 10;     // ms
constexpr double stepUnit = 10;    // ms per unit of age
constexpr int oldestAge = rules::vertexLifetime / 10;

}  // namespace

void clsTail::num(double value) { serial_ = value + *base_; }

double clsTail::num() const { return serial_ - *base_; }

void clsTail::initTail(double newNum, std::int16_t ownerIndex, Vector position) {
  ownerIndex_ = ownerIndex;
  position_ = position;
  age_ = 0;
  num(newNum);
  tailID_ = numberText(std::int32_t{ownerIndex}) + "-" + numberText(Timer()) + "-" +
            numberText(std::int32_t{drawBelow(99999) + 10000});
}

bool clsTail::age() {
  const Millis now = GetTickCount();
  const Millis elapsed = now - lastStep_;
  // Quirk Q-101: a gap above 32 seconds doesn't count. The first call, with a tick of 0, takes the same branch: it
  // stamps the vertex and adds nothing.
  if (elapsed >= maxStep) {
    lastStep_ = now;
    return false;
  }
  // Quirk Q-102: up to 10 ms nothing happens and the tick stays, so the time accumulates. Above, the step is rounded to
  // whole units and the remainder is lost.
  if (elapsed <= minStep) return false;
  age_ = toInt16(age_ + roundToEven(static_cast<double>(elapsed) / stepUnit));
  lastStep_ = now;
  if (age_ <= oldestAge) return false;
  expire();  // destroys this object
  return true;
}

void clsTail::expire() {
  // Quirk Q-300: a vertex that the local player laid before the first login belongs to slot 0, and is never removed.
  const std::int16_t owner = ownerIndex_;
  modMain::checkKillerTail(owner, tailID_);
  modMain::killTailOf(owner, num());
}

void clsPlayer::addTail(Vector point) {
  if (!alive || clsTail::count() >= modMain::maxTailVertices) return;
  const double count = tailCount();
  clsTail& vertex = tails.emplace_back(tailBase);
  vertex.initTail(count, playerIndex, point);
  if (powerups[chargedTailSlot].active) vertex.isCharged(true);
}

void clsPlayer::killTail(double num) {
  if (!(num >= 0 && num < tailCount())) return;
  const std::size_t index = static_cast<std::size_t>(num);
  if (static_cast<double>(index) != num) return;
  // Moves the shorter end: the older vertices up by one with the base, or the newer ones down by one.
  if (index < tails.size() / 2 || index == 0) {
    for (std::size_t i = 0; i < index; ++i) tails[i].serial_ += 1;
    tailBase += 1;
  } else {
    for (std::size_t i = index + 1; i < tails.size(); ++i) tails[i].serial_ -= 1;
  }
  tails.erase(tails.begin() + static_cast<std::ptrdiff_t>(index));
}

std::string clsPlayer::getTailID(double num) const {
  if (!(num >= 0 && num < tailCount())) return {};
  const std::size_t index = static_cast<std::size_t>(roundToEven(num));
  if (index >= tails.size()) raiseSubscriptOutOfRange();
  return tails[index].tailID();
}

double clsPlayer::getTailNumByID(const std::string& id) const {
  double num = 0;
  for (const clsTail& vertex : tails) {
    if (vertex.tailID() == id) return num;
    num += 1;
  }
  return -1;
}

double clsPlayer::getTailNumByPos(Vector point) const {
  double num = 0;
  for (const clsTail& vertex : tails) {
    if (vertex.getPosition() == point) return num;
    num += 1;
  }
  return -1;
}

// By the rules, the pass starts over at the oldest vertex whenever a vertex expires. That makes no difference unless
// the clock has moved: every earlier vertex has had its step at this tick t, and a second step at t does nothing.
// Either the first step set the vertex's tick to t, so 0 ms have elapsed, or it found 10 ms or less, and finds the same
// again. (The branch for long gaps sets the tick to t as well, and the tick count is never small enough for 0 ms to
// look long.) So the pass continues with the vertex that has taken the removed one's place, and starts over only if the
// clock has moved since the walk began.
void clsPlayer::ageTails() {
  if (tails.empty()) return;
  // Quirk Q-100: no tick advances while the tail is extended, so the first pass afterwards counts the whole time at
  // once. A tail that was extended for more than two seconds then vanishes in one frame.
  if (powerups[extendedTailSlot].active) return;
  const Millis now = GetTickCount();
  if (lastAgeTick == 0) lastAgeTick = now;
  if (now - lastAgeTick <= 0) return;
  Millis walkStart = now;
  for (std::size_t i = 0; i < tails.size();) {
    if (!tails[i].age()) {
      ++i;
      continue;
    }
    const Millis tick = GetTickCount();
    if (tick != walkStart) {
      walkStart = tick;
      i = 0;
    }
  }
  lastAgeTick = now;
}

}  // namespace kelvora
