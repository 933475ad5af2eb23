#include "platform/windowing/polledTimers.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "platform/widgets.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

constexpr Millis never = std::numeric_limits<Millis>::max();

class TimerPeer;
std::vector<TimerPeer*> timers;

class TimerPeer : public Peer {
 public:
  explicit TimerPeer(IntervalTimer& timer) : timer_(timer) {
    timers.push_back(this);
    follow();
  }
  ~TimerPeer() override { std::erase(timers, this); }

  void changed(PropertyId) override { follow(); }
  Millis due() const { return due_; }

  void tick(Millis now) {
    due_ = now + timer_.Interval;
    raiseEvent(timer_, timer_.Timer);
    if (!timer_.mayRest || !timer_.mayRest()) return;
    timer_.isResting = true;
    due_ = never;
  }

 private:
  void follow() {
    timer_.isResting = false;
    due_ = timer_.Enabled && timer_.Interval > 0 ? GetTickCount() + timer_.Interval : never;
  }

  IntervalTimer& timer_;
  Millis due_ = never;
};

}  // namespace

std::unique_ptr<Peer> makePolledTimer(IntervalTimer& timer) { return std::make_unique<TimerPeer>(timer); }

void serveTimers(Millis now) {
  // By index, because a handler may create or destroy timers. Forms outlive their handlers.
  for (std::size_t i = 0; i < timers.size(); ++i) {
    if (timers[i]->due() <= now) timers[i]->tick(now);
  }
}

Millis nextTimer() {
  Millis next = never;
  for (const TimerPeer* timer : timers) next = std::min(next, timer->due());
  return next;
}

}  // namespace kelvora
