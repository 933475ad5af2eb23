#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdint>
#include <string>

#include "bench/turns.h"
#include "core/modMain.h"
#include "simulation/clsPlayer.h"
#include "tools/headless/headlessClient.h"

// The cost of a very long tail: an Extra Long Tail, or a server that sends many positions at once. Argument 0:
// vertices. Every figure is the median of a single frame or search, so that a pause would show.

namespace {

using namespace kelvora;
using kelvora::bench::Turns;

/// An opponent far off screen with a tail of that many vertices, all at different positions.
class LongTail : public HeadlessClient {
 public:
  explicit LongTail(std::int64_t vertices) {
    machine.generator.randomize(1);
    modMain::world.localPlayer.position = {90000, 90000};
    clsPlayer& player = modMain::world.opponents.emplace_back();
    modMain::world.opponentCount = 1;
    player.init(yellowPlayer, 0, 2, "Bob");
    player.position = {10000, 10000};
    lay(vertices);
    player.lastAgeTick = machine.ticks - 1;
  }

  void lay(std::int64_t vertices) {
    for (std::int64_t i = 0; i < vertices; ++i) owner().addTail(place(i));
  }
  static Vector place(std::int64_t i) {
    return {static_cast<float>(i % 300) * 100, static_cast<float>(std::floor(static_cast<double>(i) / 300)) * 10};
  }
  static clsPlayer& owner() { return modMain::world.opponents.front(); }
};

void reportMilliseconds(benchmark::State& state, const Turns& turns) {
  state.counters["ms"] = turns.microseconds(0) / 1000;
  state.counters["ns_a_vertex"] = turns.microseconds(0) * 1000 / static_cast<double>(state.range(0));
}

// The clock stands still, so no vertex ages. The tail is traversed and found to be off screen.
void paintUnseenTail(benchmark::State& state) {
  LongTail tail(state.range(0));
  Turns turns(1);
  for (auto unused : state) turns.measure(0, 1, [&] { tail.owner().paintSelf(); });
  reportMilliseconds(state, turns);
}

// Every vertex ages by two units in every frame. Before they expire, all are laid again.
void ageTail(benchmark::State& state) {
  LongTail tail(state.range(0));
  Turns turns(1);
  int frame = 0;
  for (auto unused : state) {
    if (frame++ % 90 == 0) {
      tail.owner().tails.clear();
      tail.owner().tailBase = 0;
      tail.lay(state.range(0));
      tail.machine.advance(20);
      tail.owner().paintSelf();
    }
    tail.machine.advance(20);
    turns.measure(0, 1, [&] { tail.owner().paintSelf(); });
    if (tail.owner().tails.size() != static_cast<std::size_t>(state.range(0))) state.SkipWithError("some have ended");
  }
  reportMilliseconds(state, turns);
}

// The clock stands still and six captures wait for other vertices. Each vertex is compared with each capture.
void paintTailWithCapturesWaiting(benchmark::State& state) {
  LongTail tail(state.range(0));
  for (int i = 0; i < 6; ++i) modMain::world.killerTails.push_back({0, "0-nowhere-" + std::to_string(i), {0}, ""});
  Turns turns(1);
  for (auto unused : state) turns.measure(0, 1, [&] { tail.owner().paintSelf(); });
  reportMilliseconds(state, turns);
  modMain::world.killerTails.clear();
}

// All vertices expire in one frame, as after an Extra Long Tail of more than two seconds.
void endWholeTail(benchmark::State& state) {
  LongTail tail(0);  // after a first pass
  Turns turns(1);
  for (auto unused : state) {
    tail.lay(state.range(0));
    tail.machine.advance(20);
    tail.owner().paintSelf();
    tail.machine.advance(5000);
    turns.measure(0, 1, [&] { tail.owner().paintSelf(); });
    if (!tail.owner().tails.empty()) state.SkipWithError("some have not ended");
  }
  reportMilliseconds(state, turns);
}

// The server names the position of the newest vertex, which is compared last.
void findByPosition(benchmark::State& state) {
  LongTail tail(state.range(0));
  const Vector newest = tail.place(state.range(0) - 1);
  double found = 0;
  Turns turns(1);
  for (auto unused : state) turns.measure(0, 1, [&] { found += tail.owner().getTailNumByPos(newest); });
  if (found <= 0) state.SkipWithError("not found");
  reportMilliseconds(state, turns);
}

constexpr auto unit = benchmark::kMillisecond;
BENCHMARK(paintUnseenTail)->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(unit);
BENCHMARK(ageTail)->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(unit);
BENCHMARK(paintTailWithCapturesWaiting)->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(unit);
BENCHMARK(endWholeTail)->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(unit);
BENCHMARK(findByPosition)->Arg(1000)->Arg(10'000)->Arg(100'000)->Unit(unit);

}  // namespace

BENCHMARK_MAIN();
