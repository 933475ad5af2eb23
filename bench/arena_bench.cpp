// The cost of the arena's rules without sockets: a position report, by the tail's length and the number of opponents,
// and a tick, by the number of bots.

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

#include "generated/version.h"
#include "protocol/frames.h"
#include "server/arena/arena.h"
#include "server/bots/botKeeper.h"

namespace {

using namespace kelvora;
using namespace kelvora::server;

/// Counts sent messages and passes them to the bots, if any.
struct Output : ArenaOutput {
  void send(ClientId client, const std::string& frame) override {
    bytes += frame.size();
    if (keeper != nullptr && client >= firstBotClient) keeper->hear(client, frame, now);
  }
  void hangUp(ClientId client) override {
    if (keeper != nullptr && client >= firstBotClient) keeper->hangUp(client);
  }
  void log(const std::string& /*line*/) override {}

  std::size_t bytes = 0;
  BotKeeper* keeper = nullptr;
  Millis now = 0;
};

void login(Arena& arena, ClientId client, Millis now) {
  arena.connected(client, now);
  const std::string frame = wire::toServer<wire::msgLogin>("P" + std::to_string(client), "", 0, KELVORA_VERSION);
  arena.received(client, wire::textOf(frame), now);
}

/// An endless round, because a capture or its end would change the measurement.
ArenaRules endlessRound() {
  ArenaRules rules;
  rules.roundMs = Millis{1} << 60;
  rules.captureGoal = 0;
  return rules;
}

std::string reportOf(double x, double y) {
  const std::string frame = wire::toServer<wire::msgPositionReport>(static_cast<float>(x), static_cast<float>(y));
  return std::string(wire::textOf(frame));
}

/// `range(0)` vertices in the reporter's tail, `range(1)` opponents next to the curve, which crosses itself in most
/// steps.
void report(benchmark::State& state) {
  Output output;
  Arena arena(output, KELVORA_VERSION, "", 1, endlessRound());
  const auto opponents = static_cast<ClientId>(state.range(1));
  Millis now = 1'000;
  for (ClientId client = 1; client <= opponents + 1; ++client) login(arena, client, now);
  // A tail of this age has its full length. The opponents are in a corner of the world.
  const double interval = 2'000.0 / static_cast<double>(state.range(0));
  now += 2'000;
  for (ClientId client = 2; client <= opponents + 1; ++client) arena.received(client, reportOf(99'000, 99'000), now);
  std::vector<std::string> curve;
  for (int i = 0; i < 4'096; ++i) {
    const double angle = 0.17 * 50 / static_cast<double>(state.range(0)) * i;
    curve.push_back(reportOf(30'000 + 3'000 * std::sin(angle), 30'000 + 3'000 * std::sin(1.618 * angle)));
  }
  double time = static_cast<double>(now);
  std::size_t next = 0;
  const auto step = [&] {
    time += interval;
    arena.received(1, curve[next++ % curve.size()], static_cast<Millis>(time));
  };
  for (int i = 0; i < 2 * state.range(0); ++i) step();
  const std::size_t before = output.bytes;
  for (auto _ : state) step();
  if (output.bytes - before < static_cast<std::size_t>(state.iterations()) * 10) state.SkipWithError("not relayed");
  state.SetComplexityN(state.range(0));
}
BENCHMARK(report)
    ->ArgNames({"tail", "opponents"})
    ->ArgsProduct({{25, 50, 100, 190}, {5}})
    ->Complexity(benchmark::oN)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(report)->ArgNames({"tail", "opponents"})->ArgsProduct({{50}, {0, 1, 5}})->Unit(benchmark::kMicrosecond);

/// 40 ms of an arena with one idle person and `range(0)` bots.
void tick(benchmark::State& state) {
  Output output;
  Arena arena(output, KELVORA_VERSION, "", 1);
  BotKeeper keeper(arena, {.count = static_cast<int>(state.range(0))}, "", KELVORA_VERSION, 1);
  output.keeper = &keeper;
  Millis now = 1'000;
  login(arena, 1, now);
  const auto step = [&] {
    output.now = now += 40;
    arena.received(1, reportOf(50'000, 50'000), now);
    arena.tick(now);
    keeper.tick(now);
  };
  for (int i = 0; i < 1'000; ++i) step();  // until all bots are in
  if (keeper.count() != static_cast<std::size_t>(state.range(0))) state.SkipWithError("bots are missing");
  for (auto _ : state) step();
}
BENCHMARK(tick)->ArgName("bots")->DenseRange(0, 5)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
