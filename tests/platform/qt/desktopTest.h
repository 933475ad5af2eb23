#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace kelvora {

/// Lets the event loop run until `isDone()` holds; false if that takes longer than a minute.
template <class Condition>
bool serveUntil(Condition isDone) {
  const QDeadlineTimer deadline(60'000);
  QTimer watch;  // wakes a loop in which nothing happens
  watch.start(5);
  while (!isDone()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace kelvora
