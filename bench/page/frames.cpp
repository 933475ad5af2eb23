// Prints the microseconds that whole frames take, game logic included, in the light and in the heavy scene. The same
// program runs natively and in a browser, so it measures the clock on the wall.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "bench/scene.h"
#include "platform/headless/blockGlyphs.h"

namespace {

using Clock = std::chrono::steady_clock;

/// Browsers tell the time no better than to a millisecond, so a slice is long.
constexpr std::chrono::milliseconds sliceLength(100);
constexpr std::size_t slices = 15;
constexpr std::size_t warmUp = 30;  ///< until the browser has optimised the code

double microsecondsPerFrame(kelvora::bench::Scene& scene) {
  int frames = 0;
  const Clock::time_point begin = Clock::now();
  Clock::time_point end = begin;
  while (end - begin < sliceLength) {
    for (int i = 0; i < 20; ++i) scene.paint();
    frames += 20;
    end = Clock::now();
  }
  return std::chrono::duration<double, std::micro>(end - begin).count() / frames;
}

void measure(const char* name, bool heavy) {
  kelvora::BlockGlyphs glyphs;
  kelvora::bench::Scene scene(heavy, &glyphs);
  std::vector<double> times;
  for (std::size_t i = 0; i < warmUp + slices; ++i) times.push_back(microsecondsPerFrame(scene));
  const auto middle = times.begin() + warmUp + slices / 2;
  std::nth_element(times.begin() + warmUp, middle, times.end());
  std::printf("%s %.2f\n", name, *middle);
}

}  // namespace

int main() {
  measure("light", false);
  measure("heavy", true);
  return 0;
}
