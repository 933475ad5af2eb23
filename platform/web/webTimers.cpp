#include "platform/web/webTimers.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

#include "platform/desktop/handlerCall.h"
#include "platform/web/webPeer.h"
#include "platform/widgets.h"

namespace kelvora {

namespace {

constexpr Tick never = std::numeric_limits<Tick>::max();

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
  Tick due() const { return due_; }

  void tick(Tick now) {
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
  Tick due_ = never;
};

}  // namespace

void makePeer(IntervalTimer& timer) { timer.peer = std::make_unique<TimerPeer>(timer); }

void serveTimers(Tick now) {
  // By index: a handler may make or free timers.
  for (std::size_t i = 0; i < timers.size(); ++i) {
    if (timers[i]->due() <= now) timers[i]->tick(now);
  }
}

Tick nextTimer() {
  Tick next = never;
  for (const TimerPeer* timer : timers) next = std::min(next, timer->due());
  return next;
}

}  // namespace kelvora
