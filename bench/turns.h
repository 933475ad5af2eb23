#pragma once

#include <time.h>

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace kelvora::bench {

/// Processor time of this thread so far, in microseconds. Excludes other programs.
inline double threadMicroseconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

/// Alternates between several pieces of work in short slices. Disturbances affect all pieces alike, and the median over
/// the rounds ignores disturbed ones.
class Turns {
 public:
  explicit Turns(std::size_t pieces) : times_(pieces) {}

  /// Runs `work` `repeats` times as piece number `piece` of the current round.
  template <class Work>
  void measure(std::size_t piece, int repeats, Work work) {
    const double begin = threadMicroseconds();
    for (int i = 0; i < repeats; ++i) {
      work();
      asm volatile("" : : : "memory");  // keeps the stores
    }
    times_[piece].push_back((threadMicroseconds() - begin) / repeats);
  }

  /// Microseconds for running a piece once, median over the rounds.
  double microseconds(std::size_t piece) const { return median(times_[piece]); }

  /// The median over the rounds of `slow`'s time divided by `fast`'s.
  double ratio(std::size_t slow, std::size_t fast) const {
    std::vector<double> ratios;
    const std::size_t rounds = std::min(times_[slow].size(), times_[fast].size());
    for (std::size_t i = 0; i < rounds; ++i) ratios.push_back(times_[slow][i] / times_[fast][i]);
    return median(std::move(ratios));
  }

 private:
  static double median(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
  }

  std::vector<std::vector<double>> times_;
};

}  // namespace kelvora::bench
