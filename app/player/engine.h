#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "app/player/channel.h"
#include "base/millis.h"
#include "platform/recording/replay.h"

namespace kelvora::player {

// The game runs in processes of its own, which are copies of one another:
//
// The *scout* runs through the whole recording at full speed. It tells marks and progress. At intervals it leaves a
// *snapshot*, a copy that waits. Asked to, a snapshot makes a *runner*, another copy, which runs on to any later time
// and describes its windows. So a jump takes as long as an interval at full speed.

/// Time of the recording between two snapshots, in ms. SnapshotPlan says where they are farther apart.
inline constexpr Millis snapshotInterval = 120'000;

/// Messages of the scout. A snapshot's message carries the channel to it.
enum class Report : std::uint8_t { Mark, Progress, Snapshot, End };

/// The game's current track.
struct Music {
  std::string file;          ///< empty if there is none
  std::uint64_t number = 0;  ///< tells a track that begins again from one that goes on

  bool operator==(const Music&) const = default;
};

/// Where a runner stops: before time passes this moment, or after that frame, whichever comes first.
struct Target {
  Millis time = 0;
  std::uint64_t frame = 0;
};

/// Starts the scout. `prepare` may set the replay's functions. Call this before the process has threads.
Channel startScout(recording::Reader::Source source, const std::string& dataFolder,
                   const std::function<void(recording::Replay&)>& prepare = nullptr,
                   Millis interval = snapshotInterval);

}  // namespace kelvora::player
