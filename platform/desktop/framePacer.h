#pragma once

#include <chrono>
#include <optional>
#include <string_view>

namespace kelvora {

/// Decides when a paced pass of the frame loop ends. The ends lie on one absolute schedule, so that a pass that was a
/// little late is made up for and the rate is exact over time.
class FramePacer {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  explicit FramePacer(std::chrono::milliseconds frame) : frame_(frame) {}

  /// The end of the pass whose wait begins at `now`; not after `now` if the pass is late. Later than three frames, and
  /// the schedule starts anew from `now`.
  TimePoint passEnd(TimePoint now);

 private:
  std::chrono::milliseconds frame_;
  std::optional<TimePoint> lastEnd_;
};

/// The frame that the text of KELVORA_FRAME_MS asks for: 1 to 1000 in plain digits; any other text is none.
std::optional<std::chrono::milliseconds> frameFromText(std::string_view text);

}  // namespace kelvora
