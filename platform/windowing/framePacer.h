#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace kelvora {

/// Decides when a paced pass of the frame loop ends. All ends are on one absolute schedule: a slightly late pass is
/// made up for, and the average rate is exact.
class FramePacer {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  explicit FramePacer(std::chrono::milliseconds frame) : frame_(frame) {}

  /// The end of the pass that starts waiting at `now`; at or before `now` if the pass is late. If it is late by more
  /// than three frames, the schedule restarts from `now`.
  TimePoint passEnd(TimePoint now);

 private:
  std::chrono::milliseconds frame_;
  std::optional<TimePoint> lastEnd_;
};

/// Parses a frame's length: 1 to 1000 in plain digits. Nothing for any other text.
std::optional<std::chrono::milliseconds> frameFromText(std::string_view text);

/// The same for the environment variable KELVORA_FRAME_MS, where 0 also means no pace. Warns on stderr of any other
/// text that is no valid length.
std::optional<std::chrono::milliseconds> frameFromEnvironment();

}  // namespace kelvora
