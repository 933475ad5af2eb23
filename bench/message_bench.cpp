#include <benchmark/benchmark.h>
#include <string>

#include "core/modMain.h"
#include "network/receive.h"
#include "protocol/frames.h"
#include "simulation/clsPlayer.h"
#include "tools/headless/headlessClient.h"

// One large read of position messages, from bytes to the opponent's queue. The time per message should not depend on
// their number.

namespace {

using namespace kelvora;

void positions(benchmark::State& state) {
  const HeadlessClient client;
  modMain::world.opponents.emplace_back();
  modMain::world.opponentCount = 1;
  clsPlayer& opponent = modMain::world.opponents.front();
  opponent.serverNode = 2;
  opponent.isConnected = true;
  modMain::world.localPlayer.serverNode = 1;
  std::string bytes;
  for (int i = 0; i < state.range(0); ++i) {
    bytes += wire::toClient<wire::msgPosition>(2, static_cast<float>(20000 + i % 5000) + 0.25F, 31234.56F);
  }
  for (auto _ : state) {
    opponent.positionQueue.clear();
    modMain::world.queuedPositions = 0;
    netMan::receiveData(bytes);
    if (opponent.positionQueue.size() != static_cast<std::size_t>(state.range(0))) state.SkipWithError("lost some");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(positions)->RangeMultiplier(10)->Range(100, 100'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
