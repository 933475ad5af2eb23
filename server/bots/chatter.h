#pragma once

#include <optional>
#include <random>
#include <string>

#include "base/millis.h"

namespace kelvora::server {

/// What a bot may have something to say about.
enum class Occasion { arrival, capture, captured, roundOver };

/// A bot's small talk: now and then a friendly line in plain ASCII, never two within a minute.
class Chatter {
 public:
  static constexpr Millis silence = 60'000;  ///< between two lines

  explicit Chatter(std::uint32_t seed) : random_(seed) {}

  /// Something has happened; a moment later it may be worth a line.
  void notice(Occasion occasion, Millis now);
  /// The line that is due, if there is one.
  std::optional<std::string> line(Millis now);

 private:
  std::mt19937 random_;
  std::string next_;
  Millis due_ = 0;
  std::optional<Millis> last_;
};

}  // namespace kelvora::server
