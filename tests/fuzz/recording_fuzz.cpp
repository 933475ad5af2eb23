// A recording with any contents, without its compression.

#include <string>
#include <utility>

#include "app/replayGame.h"
#include "generated/sourceFolder.h"
#include "tests/fuzz/fuzzClient.h"

namespace kelvora {
namespace {

void run(fuzz::Input input) {
  const HeadlessClient client;
  std::string contents(input.rest());
  // Any end is permitted that the report can express.
  const ReplayReport report = replayGame([&contents] { return std::exchange(contents, {}); }, KELVORA_SOURCE_DIR,
                                         [](recording::Replay& replay) {
                                           constexpr std::uint64_t maxFrames = 300;
                                           replay.pictureSource = testPicture;
                                           replay.onFrame = [&replay] { return replay.frames() < maxFrames; };
                                         });
  fuzz::require(report.differences.size() <= 10);
}

}  // namespace
}  // namespace kelvora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kelvora::run({data, size});
  return 0;
}
