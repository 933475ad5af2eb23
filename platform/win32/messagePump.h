#pragma once

namespace kelvora {

/// Dispatches pending window messages until one of them queues input: the game may move the focus before the next key.
/// Menus and the dragging of windows run the system's loops inside a dispatch. They run on a fiber, so that this
/// returns meanwhile, and the game goes on.
void pumpMessages();

/// Sleeps until a window message, a network event or the end of this time (ms; -1 for none).
void waitForMessages(int milliseconds);

/// Called for messages that begin a loop of the system, which ends by itself.
void systemLoopBegins();
/// True while a loop of the system runs. Each call of pumpMessages() then lasts some milliseconds.
bool isInSystemLoop();

}  // namespace kelvora
