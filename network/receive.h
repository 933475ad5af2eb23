#pragma once

#include <string_view>

namespace kelvora::netMan {

/// Reads and handles everything that has arrived on the game's socket.
void readSocket();
/// Splits received data into the message queue, then processes the queue.
void receiveData(std::string_view data);
/// Handles every complete message in order. A message that faults is dropped.
void processMessages();

}  // namespace kelvora::netMan
