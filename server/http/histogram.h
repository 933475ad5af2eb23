#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace kelvora::server {

/// Counts durations by their length. Adding one costs a few nanoseconds.
class Histogram {
 public:
  /// Upper bounds of the buckets, inclusive. A tick has 40 ms. The last bucket has no bound.
  static constexpr std::array<std::chrono::microseconds, 17> bounds{
      std::chrono::microseconds(5),       std::chrono::microseconds(10),       std::chrono::microseconds(20),
      std::chrono::microseconds(50),      std::chrono::microseconds(100),      std::chrono::microseconds(200),
      std::chrono::microseconds(500),     std::chrono::microseconds(1'000),    std::chrono::microseconds(2'000),
      std::chrono::microseconds(5'000),   std::chrono::microseconds(10'000),   std::chrono::microseconds(20'000),
      std::chrono::microseconds(40'000),  std::chrono::microseconds(80'000),   std::chrono::microseconds(200'000),
      std::chrono::microseconds(500'000), std::chrono::microseconds(1'000'000)};

  void add(std::chrono::nanoseconds time) {
    const auto bound = std::lower_bound(bounds.begin(), bounds.end(), time);
    ++counts_[static_cast<std::size_t>(bound - bounds.begin())];
    sum_ += time;
  }

  /// The number of durations in each bucket, with the unbounded one last.
  const std::array<std::uint64_t, bounds.size() + 1>& counts() const { return counts_; }
  std::chrono::nanoseconds sum() const { return sum_; }

 private:
  std::array<std::uint64_t, bounds.size() + 1> counts_{};
  std::chrono::nanoseconds sum_{};
};

}  // namespace kelvora::server
