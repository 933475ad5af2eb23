#pragma once

#include "platform/backend.h"

namespace kelvora {

/// Runs the handlers of the timers that are due; one fires once however many intervals have passed.
void serveTimers(Tick now);
/// When the next timer is due; the largest Tick if none runs.
Tick nextTimer();

}  // namespace kelvora
