#pragma once

#include <cstdint>

namespace kelvora {

/// The handle that an event loop waits for besides its own events. Once it is signaled, call serveSockets(). A file
/// descriptor that can be read then; on Windows the handle of an event.
std::intptr_t networkSignal();

/// Signals it. Thread-safe.
void signalNetwork();

/// Takes the signal back, until there is news again.
void clearNetworkSignal();

}  // namespace kelvora
