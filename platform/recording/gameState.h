#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kelvora::recording {

/// One part of the game's state, such as a picture, as a sum.
struct StatePart {
  std::string name;
  std::uint64_t sum = 0;

  /// The part of the sum that a recording keeps: its upper 16 bits, which depend on all that was added.
  std::array<std::uint8_t, 2> recorded() const {
    return {static_cast<std::uint8_t>(sum >> 56), static_cast<std::uint8_t>(sum >> 48 & 255U)};
  }
};

/// Sums up the game's state, one entry per part.
using GameState = std::function<std::vector<StatePart>()>;

/// Adds values of plain types to a sum. Equal values in equal order give equal sums on every machine.
class Sum {
 public:
  void add(std::uint64_t value) {
    sum_ = (sum_ ^ value) * 0x9E3779B97F4A7C15U;
    sum_ ^= sum_ >> 29;
  }
  void add(float value);
  void add(const std::string& text);
  /// Pixels, two at a time.
  void add(const std::uint32_t* pixels, std::size_t count);
  std::uint64_t value() const { return sum_; }

 private:
  std::uint64_t sum_ = 0;
};

}  // namespace kelvora::recording
