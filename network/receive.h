#pragma once

#include <string_view>

namespace kelvora::netMan {

/// Cuts what one receive event delivered into the message queue, then works the queue through.
void receiveData(std::string_view data);
/// Handles every complete message of the queue in order. A message that faults is dropped.
void processMessages();

}  // namespace kelvora::netMan
