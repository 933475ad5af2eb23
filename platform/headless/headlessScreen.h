#pragma once

#include <memory>
#include <vector>

#include "platform/form.h"
#include "platform/headless/headlessBackend.h"
#include "platform/widgets.h"

namespace kelvora {

/// The existing controls and sockets. They may outlive the backend, so both share this.
struct HeadlessScreen {
  struct RunningTimer {
    IntervalTimer* timer = nullptr;
    Millis due = 0;  ///< ms
  };
  struct Plug {
    const Winsock* socket = nullptr;
    HeadlessSocket* peer = nullptr;
  };
  std::vector<RunningTimer> timers;
  std::vector<Plug> sockets;
  Control* focus = nullptr;
  HeadlessBackend* machine = nullptr;  ///< null once destroyed
};

/// The peer of any control. It shows nothing and maintains the screen's lists.
class HeadlessPeer : public Peer {
 public:
  HeadlessPeer(std::shared_ptr<HeadlessScreen> screen, Control& control);
  ~HeadlessPeer() override;
  void changed(PropertyId id) override;
  void takeFocus() override { screen_->focus = &control_; }

 private:
  void restartTimer();

  std::shared_ptr<HeadlessScreen> screen_;
  Control& control_;
};

}  // namespace kelvora
