#include "server/agones/sidecarPlan.h"

#include <algorithm>

namespace kelvora::server {

namespace {

using Call = SidecarPlan::Call;

// The most urgent first.
constexpr std::array allCalls{Call::shutdown, Call::ready, Call::health, Call::allocate, Call::place, Call::players};
static_assert(allCalls.size() == SidecarPlan::callCount);

std::size_t indexOf(Call call) { return static_cast<std::size_t>(call); }

}  // namespace

std::optional<Call> SidecarPlan::next(Millis now) const {
  const auto found = std::ranges::find_if(
      allCalls, [&](Call call) { return isWanted(call, now) && now >= notBefore_[indexOf(call)]; });
  return found == allCalls.end() ? std::nullopt : std::optional(*found);
}

Millis SidecarPlan::wait(Millis now) const {
  Millis due = now + healthInterval;
  for (const Call call : allCalls) {
    if (isWanted(call, now)) due = std::min(due, notBefore_[indexOf(call)]);
  }
  return std::max<Millis>(due - now, 1);
}

bool SidecarPlan::isWanted(Call call, Millis now) const {
  if (isFinished_) return call == Call::shutdown && !isOver_;
  const bool isAlive = aliveAt_ && now - *aliveAt_ < stallTime;
  switch (call) {
    case Call::shutdown:
      return false;
    case Call::ready:
      return isAlive && (known_ == Known::nothing || (known_ == Known::allocated && players_ == 0));
    case Call::health:
      return isAlive && known_ != Known::nothing;
    case Call::allocate:
      return known_ == Known::ready && players_ > 0;
    case Call::place:
      return known_ != Known::nothing && !isPlaceKnown_;
    case Call::players:
      return isCounting_ && known_ != Known::nothing && knownPlayers_ != players_;
  }
  return false;
}

void SidecarPlan::ended(Call call, std::size_t players, Result result, Millis now) {
  const bool isDone = result == Result::done;
  notBefore_[indexOf(call)] = now + (call == Call::health ? healthInterval : isDone ? 0 : retryInterval);
  if (call == Call::players && result == Result::unknown) isCounting_ = false;
  if (!isDone) return;
  if (call == Call::ready) known_ = Known::ready;
  if (call == Call::allocate) known_ = Known::allocated;
  if (call == Call::place) isPlaceKnown_ = true;
  if (call == Call::players) knownPlayers_ = players;
  if (call == Call::shutdown) isOver_ = true;
}

}  // namespace kelvora::server
