#pragma once

#include <string>

#include "protocol/frames.h"

namespace kelvora::netMan {

/// Sends one frame. Drops it silently unless the socket is connected.
void sendFrame(const std::string& frame);

/// Sends one message, with the fields that wire::messages has for it.
template <wire::MessageId id, class... Values>
void sendMessage(const Values&... values) {
  sendFrame(wire::toServer<id>(values...));
}

}  // namespace kelvora::netMan
