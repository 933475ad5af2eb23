#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/millis.h"
#include "server/arena/playerView.h"

namespace kelvora {

/// Records what the arena sends to each client, and when. An ArenaOutput passes everything to `add`. After the match,
/// `expectTrueReplay` replays one client's stream to a whole headless client, frame by frame on a clock set by hand,
/// and compares the results. Only one client can exist at a time, so use plain TESTs instead of GameTest.
class Recording {
 public:
  using Stream = std::vector<std::pair<Millis, std::string>>;

  void add(server::ClientId client, Millis now, const std::string& frame) { streams_[client].emplace_back(now, frame); }
  /// Empty for a client that got nothing.
  const Stream& stream(server::ClientId client) const;

 private:
  std::map<server::ClientId, Stream> streams_;
};

/// The machine and the connection of the client that gets a replay.
struct ReplayLine {
  int latencyFrames = 3;  ///< at least 1
  int jitterFrames = 0;   ///< maximum number of additional frames by which a message is late; the order is kept
  int frameMs = 10;
  unsigned seed = 1;  ///< of the jitter
};

/// Expects that client `client`, which must still be logged in, ends up with what the arena's players() returns after
/// all captures have landed: the same players, who is alive, everybody's kills and credits, and its own stock. Also
/// expects that nobody whom the server's latest message has brought to life dies in between.
void expectTrueReplay(const Recording& recording, server::ClientId client,
                      const std::vector<server::PlayerView>& players, const ReplayLine& line = {});

}  // namespace kelvora
