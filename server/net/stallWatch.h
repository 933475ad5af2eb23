#pragma once

#include <chrono>
#include <optional>
#include <utility>

namespace kelvora::server {

/// Detects that the process was stopped for a while, by a signal or with the whole machine, and couldn't listen in that
/// time.
class StallWatch {
 public:
  using Clock = std::chrono::steady_clock;
  /// An overloaded machine is late as well. Shorter delays don't count as a stop.
  static constexpr std::chrono::seconds hitch{5};

  /// Call this in every tick. Returns how long the process was stopped, zero if it was no longer than a hitch.
  Clock::duration stoppedFor(Clock::time_point now) {
    const std::optional<Clock::time_point> before = std::exchange(last_, now);
    return before && now - *before > hitch ? now - *before : Clock::duration::zero();
  }

 private:
  std::optional<Clock::time_point> last_;
};

}  // namespace kelvora::server
