#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/recording/replay.h"

namespace kelvora {

/// The result of a whole replay.
struct ReplayReport {
  recording::ReplayEnd::Reason reason = recording::ReplayEnd::Reason::Ended;
  std::string text;           ///< the fault, or what is wrong
  std::string recordedFault;  ///< empty if the recorded game had none
  std::string version;        ///< of the program that recorded
  std::uint64_t frames = 0;
  std::uint64_t checks = 0;
  Millis duration = 0;  ///< ms
  std::vector<recording::Difference> differences;

  /// True if the replay was the recorded game to its end, even if that was a fault.
  bool isExact() const;
};

/// Runs the game through a recording, without a screen and as fast as possible. No form may be loaded yet. Installs a
/// backend, and none at the end. `prepare` may set the replay's functions before it starts.
ReplayReport replayGame(recording::Reader::Source source, const std::string& dataFolder,
                        const std::function<void(recording::Replay&)>& prepare = nullptr);

}  // namespace kelvora
