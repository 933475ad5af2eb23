#pragma once

#include <memory>

#include "platform/backend.h"
#include "platform/control.h"

namespace kelvora {

class IntervalTimer;

/// A timer for backends whose event loop asks for the time. It ticks within serveTimers alone.
std::unique_ptr<Peer> makePolledTimer(IntervalTimer& timer);

/// Runs the timers that are due.
void serveTimers(Tick now);
/// When the next timer is due. The largest Tick if none is.
Tick nextTimer();

}  // namespace kelvora
