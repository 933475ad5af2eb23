#pragma once

#include <optional>
#include <random>
#include <string>

#include "base/millis.h"

namespace kelvora::server {

/// Events that a bot may comment on.
enum class Occasion { arrival, capture, captured, roundOver };

/// A bot's small talk: an occasional friendly line in plain ASCII, at most one per minute.
class Chatter {
 public:
  static constexpr Millis silence = 60'000;  ///< minimum time between two lines

  explicit Chatter(std::uint32_t seed) : random_(seed) {}

  /// Reports an event. It may cause a line a moment later.
  void notice(Occasion occasion, Millis now);
  /// The line to send now, if any.
  std::optional<std::string> line(Millis now);

 private:
  std::mt19937 random_;
  std::string next_;
  Millis due_ = 0;
  std::optional<Millis> last_;
};

}  // namespace kelvora::server
