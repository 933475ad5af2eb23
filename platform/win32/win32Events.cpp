#include <algorithm>
#include <limits>
#include <thread>

#include "platform/form.h"
#include "platform/sockets/networkSignal.h"
#include "platform/sockets/streamSocket.h"
#include "platform/win32/eventQueue.h"
#include "platform/win32/messagePump.h"
#include "platform/win32/win32.h"
#include "platform/win32/win32Backend.h"
#include "platform/windowing/handlerCall.h"
#include "platform/windowing/polledTimers.h"

namespace kelvora {

void Win32Backend::servePending() {
  pumpMessages();
  const Clock::time_point end = Clock::now() + std::chrono::milliseconds(maxServiceTime);
  bool isMore = true;
  while (isMore && Clock::now() < end) {
    isMore = serveInput();
    serveTimers(tickCount());
    if (isMore && !isInSystemLoop()) pumpMessages();
  }
  // Once, as on Linux: a server nearby could otherwise accept a login and hang up within a handler's DoEvents.
  isMore = serveSockets() || isMore;
  // Events that are left must not wait for the next message.
  if (isMore) signalNetwork();
}

void Win32Backend::wait(std::int64_t milliseconds) {
  if (isInputQueued()) return;
  const Millis next = nextTimer();
  if (next != std::numeric_limits<Millis>::max()) {
    const Millis left = std::max<Millis>(next - tickCount(), 0);
    milliseconds = milliseconds < 0 ? left : std::min(milliseconds, left);
  }
  constexpr std::int64_t maxWait = 1'000'000;
  waitForMessages(static_cast<int>(std::min(milliseconds, maxWait)));
}

void Win32Backend::doEvents(bool mayWait) {
  const bool isOutermost = handlerDepth() == 0;
  if (isOutermost) releaseUnloadedForms();
  const HandlerScope scope;
  if (mayWait) {
    wait(-1);
    servePending();
  } else if (pacer_ && isOutermost) {
    serveUntil(pacer_->passEnd(Clock::now()));
  } else if (handlerDepth() <= maxServiceDepth) {
    servePending();
  }
}

void Win32Backend::serveUntil(Clock::time_point end) {
  using std::chrono::milliseconds;
  for (;;) {
    servePending();
    const auto left = end - Clock::now();
    if (left <= left.zero()) return;
    // The system waits in whole milliseconds.
    if (left < milliseconds(1)) {
      std::this_thread::sleep_until(end);
    } else {
      wait(std::chrono::duration_cast<milliseconds>(left).count());
    }
  }
}

void Win32Backend::runModal(Form& form) {
  const HandlerScope scope;
  while (form.Visible) {
    wait(-1);
    servePending();
  }
}

}  // namespace kelvora
