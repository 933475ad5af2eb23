#pragma once

#include <functional>
#include <string>

#include "server/arena/clientId.h"
#include "server/moderation/timeText.h"

namespace kelvora::server {

/// What moderation needs besides the arena and its bots.
class ModerationHost {
 public:
  virtual ~ModerationHost() = default;
  /// The network of a person, see `networkOf`.
  virtual std::string network(ClientId client) const = 0;
  /// Logs a line for the operator, without a line break.
  virtual void log(const std::string& line) = 0;
  /// The time in UTC.
  virtual Seconds wallClock() const = 0;
  /// Runs `work` on another thread, and then `finish` on this one. Never from within this call. False, without either,
  /// if too much work is pending.
  virtual bool runAside(std::function<void()> work, std::function<void()> finish) = 0;
};

}  // namespace kelvora::server
