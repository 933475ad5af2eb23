#include <QTimer>

#include "platform/qt/widgetPeer.h"
#include "platform/widgets.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

class TimerPeer : public Peer {
 public:
  explicit TimerPeer(IntervalTimer& timer) : timer_(timer) {
    QObject::connect(&ticker_, &QTimer::timeout, &ticker_, [this] { tick(); });
    follow();
  }

  void changed(PropertyId) override { follow(); }

 private:
  void tick() {
    raiseEvent(timer_, timer_.Timer);
    if (!timer_.mayRest || !timer_.mayRest()) return;
    timer_.isResting = true;
    ticker_.stop();
  }

  void follow() {
    timer_.isResting = false;
    if (timer_.Enabled && timer_.Interval > 0) {
      ticker_.start(timer_.Interval);
    } else {
      ticker_.stop();
    }
  }

  IntervalTimer& timer_;
  QTimer ticker_;
};

}  // namespace

std::unique_ptr<Peer> makePeer(IntervalTimer& timer) { return std::make_unique<TimerPeer>(timer); }

}  // namespace kelvora
