#pragma once

#include <memory>
#include <vector>

#include "platform/form.h"
#include "platform/headless/headlessBackend.h"
#include "platform/widgets.h"

namespace kelvora {

/// What the machine knows of the controls and sockets that exist. They may outlive the backend, so both share it.
struct HeadlessScreen {
  struct RunningTimer {
    IntervalTimer* timer = nullptr;
    Tick due = 0;  ///< ms
  };
  struct Plug {
    const Winsock* socket = nullptr;
    HeadlessSocket* peer = nullptr;
  };
  std::vector<RunningTimer> timers;
  std::vector<Plug> sockets;
  Control* focus = nullptr;
  HeadlessBackend* machine = nullptr;  ///< null once it is gone
};

/// The peer of any control: it shows nothing, and keeps the screen's lists in order.
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
