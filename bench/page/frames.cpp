// Prints the microseconds that whole frames take, game logic included, in the light and in the heavy scene. The same
// program runs natively and in a browser, so it measures the clock on the wall. The fastest of many slices counts,
// which the browser's compiler and other programs have left alone.

#include <algorithm>
#include <chrono>
#include <cstdio>

#ifdef __EMSCRIPTEN__
#include <emscripten.h>
#endif

#include "bench/scene.h"
#include "platform/headless/blockGlyphs.h"

namespace {

using Clock = std::chrono::steady_clock;

/// Browsers tell the time no better than to a millisecond, so a slice is long.
constexpr std::chrono::milliseconds sliceLength(50);
constexpr int slices = 60;

// Like the game, the program gives the browser its turn now and then, so its code is instrumented as the game's is.
void yield() {
#ifdef __EMSCRIPTEN__
  emscripten_sleep(0);
#endif
}

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
  double fastest = microsecondsPerFrame(scene);
  for (int i = 1; i < slices; ++i) {
    yield();
    fastest = std::min(fastest, microsecondsPerFrame(scene));
  }
  std::printf("%s %.2f\n", name, fastest);
}

}  // namespace

int main() {
  measure("light", false);
  measure("heavy", true);
  return 0;
}
