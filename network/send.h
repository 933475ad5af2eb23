#pragma once

#include <string>

#include "protocol/frames.h"

namespace kelvora::netMan {

/// Sends one frame. Drops it silently unless the socket is connected.
void sendFrame(const std::string& frame);

/// Builds and sends one message. The values must match its fields in wire::messages.
template <wire::MessageId id, class... Values>
void sendMessage(const Values&... values) {
  sendFrame(wire::toServer<id>(values...));
}

}  // namespace kelvora::netMan
