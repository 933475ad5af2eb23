#pragma once

#include <memory>

#include "platform/backend.h"
#include "platform/control.h"

namespace kelvora {

class IntervalTimer;

/// A timer for backends whose event loop asks for the time. It ticks within serveTimers alone.
std::unique_ptr<Peer> makePolledTimer(IntervalTimer& timer);

/// Runs the timers that are due.
void serveTimers(Millis now);
/// When the next timer is due. The largest Millis if none is.
Millis nextTimer();

}  // namespace kelvora
