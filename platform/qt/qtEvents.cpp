#include <QCoreApplication>
#include <QEventLoop>
#include <thread>

#include "platform/form.h"
#include "platform/qt/qtDesktop.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

namespace {

void servePending() { QCoreApplication::processEvents(QEventLoop::AllEvents, maxServiceTime); }

}  // namespace

void QtDesktop::doEvents(bool mayWait) {
  const bool isOutermost = handlerDepth() == 0;
  if (isOutermost) {
    releaseUnloadedForms();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  const HandlerScope scope;
  if (mayWait) {
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  } else if (pacer_ && isOutermost) {
    serveUntil(pacer_->passEnd(FramePacer::TimePoint::clock::now()));
  } else if (isOutermost) {
    servePending();
  } else if (handlerDepth() <= maxServiceDepth) {
    // Only what is pending now: the answers belong to the frame loop, after the handler has returned.
    QCoreApplication::processEvents(QEventLoop::AllEvents);
  }
}

void QtDesktop::serveUntil(FramePacer::TimePoint end) {
  using std::chrono::milliseconds;
  for (;;) {
    servePending();
    const auto left = end - FramePacer::TimePoint::clock::now();
    if (left <= left.zero()) return;
    // The event loop's clock has a resolution of a millisecond. Sleeps the rest without it.
    if (left < milliseconds(1)) {
      std::this_thread::sleep_until(end);
      continue;
    }
    wakeUp_.start(std::chrono::duration_cast<milliseconds>(left));
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    wakeUp_.stop();
  }
}

void QtDesktop::runModal(Form& form) {
  const HandlerScope scope;
  while (form.Visible) QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

}  // namespace kelvora
