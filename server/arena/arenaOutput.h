#pragma once

#include <cstdint>
#include <string>

#include "server/arena/clientId.h"

namespace kelvora::server {

/// What a limit drops: a position, another request, or a connection that didn't log in in time.
enum class Drop : std::uint8_t { position, request, lateLogin };

/// The arena's effects on the outside world. Called from within the arena's calls, and must not call back.
class ArenaOutput {
 public:
  virtual ~ArenaOutput() = default;
  /// Sends one whole frame.
  virtual void send(ClientId client, const std::string& frame) = 0;
  /// Closes the connection after everything sent so far has gone out.
  virtual void hangUp(ClientId client) = 0;
  /// Logs a line for the operator, without a line break.
  virtual void log(const std::string& line) = 0;
  /// Counts what a limit has dropped.
  virtual void dropped(Drop /*what*/) {}
};

}  // namespace kelvora::server
