#pragma once

#include <chrono>
#include <optional>
#include <utility>

namespace kelvora::server {

/// Notices that the process was stopped for a while - by a signal, or with the whole machine it runs on - and could
/// hear nobody in that time.
class StallWatch {
 public:
  using Clock = std::chrono::steady_clock;
  /// A machine under load is late as well; up to here it is no stop.
  static constexpr std::chrono::seconds hitch{5};

  /// To be asked in every tick: for how long there was none, zero unless it was longer than a hitch.
  Clock::duration stop(Clock::time_point now) {
    const std::optional<Clock::time_point> before = std::exchange(last_, now);
    return before && now - *before > hitch ? now - *before : Clock::duration::zero();
  }

 private:
  std::optional<Clock::time_point> last_;
};

}  // namespace kelvora::server
