#pragma once

#include <span>

#include "network/messageFields.h"
#include "protocol/messages.h"

namespace kelvora::netMan {

/// A message's id and handler.
struct Route {
  wire::MessageId id;
  void (*handle)(const MessageFields& fields);
};

/// All messages that the client understands.
std::span<const Route> routes();
/// Null for an unknown id.
const Route* findRoute(wire::MessageId id);

}  // namespace kelvora::netMan
