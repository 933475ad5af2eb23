#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kelvora::server {

/// What pieces of the server need of its process.
class ServerHost {
 public:
  virtual ~ServerHost() = default;
  /// Logs a line for the operator, without a line break.
  virtual void log(const std::string& line) = 0;
  /// The time in seconds since 1970 in UTC.
  virtual std::int64_t wallClock() const = 0;
  /// Runs `work` on another thread, and then `finish` on this one. Never from within this call. One after the other, in
  /// order. False, without either, if too much work is pending, or if the system has no thread.
  virtual bool runAside(std::function<void()> work, std::function<void()> finish) = 0;
};

}  // namespace kelvora::server
