#pragma once

#include <string>

#include "server/arena/clientId.h"

namespace kelvora::server {

/// What the arena does to the outside world, from within its calls. It must not call back.
class ArenaOutput {
 public:
  virtual ~ArenaOutput() = default;
  virtual void send(ClientId client, const std::string& frame) = 0;
  /// Ends the connection once everything sent so far has gone out.
  virtual void hangUp(ClientId client) = 0;
  virtual void log(const std::string& line) = 0;
};

}  // namespace kelvora::server
