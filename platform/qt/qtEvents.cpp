#include <QCoreApplication>
#include <QEventLoop>
#include <thread>

#include "platform/form.h"
#include "platform/qt/handlerCall.h"
#include "platform/qt/qtDesktop.h"

namespace kelvora {

namespace {

/// Everything that is waiting, but no longer than this if more keeps coming.
constexpr int longestService = 10;  // ms

/// Handlers that ask for events run inside one another; a held key would bring them to the end of the stack.
constexpr int deepestService = 40;  // handlers and loops; sixteen message boxes take two each

void servePending() { QCoreApplication::processEvents(QEventLoop::AllEvents, longestService); }

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
  } else if (handlerDepth() <= deepestService) {
    // What is waiting now and no more: the answers to it belong to the frame loop, behind the handler that asked.
    QCoreApplication::processEvents(QEventLoop::AllEvents);
  }
}

void QtDesktop::serveUntil(FramePacer::TimePoint end) {
  using std::chrono::milliseconds;
  for (;;) {
    servePending();
    const auto left = end - FramePacer::TimePoint::clock::now();
    if (left <= left.zero()) return;
    // The event loop's own clock knows whole milliseconds only; the rest of the last one is slept without it.
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
