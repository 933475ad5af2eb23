#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/millis.h"
#include "server/arena/playerView.h"

namespace kelvora {

/// What the arena has sent to each of its clients, and when. How to use it: an ArenaOutput hands all that it is told
/// to send to `add`; when the match is over, `expectTrueReplay` plays one client's stream to a whole headless client,
/// frame by frame on a clock set by hand, and compares. Streams are played one after the other: a process holds one
/// client at a time, so no GameTest may be alive meanwhile (use plain TESTs).
class Recording {
 public:
  using Stream = std::vector<std::pair<Millis, std::string>>;

  void add(server::ClientId client, Millis now, const std::string& frame) { streams_[client].emplace_back(now, frame); }
  /// Empty for a client that was sent nothing.
  const Stream& stream(server::ClientId client) const;

 private:
  std::map<server::ClientId, Stream> streams_;
};

/// The machine and the line of the client that a stream is played to.
struct ReplayLine {
  int latencyFrames = 3;  ///< at least 1
  int jitterFrames = 0;   ///< by up to so many frames more is a message late; the order is kept
  int frameMs = 10;
  unsigned seed = 1;  ///< of the jitter
};

/// The client of that number, still in at the end, sees at the end of its stream and after everything has landed what
/// the arena's players() say: the same players, who is alive, everybody's kills and credits, its own stock. And
/// in between nobody dies on it whom the server's last word has given life.
void expectTrueReplay(const Recording& recording, server::ClientId client,
                      const std::vector<server::PlayerView>& players, const ReplayLine& line = {});

}  // namespace kelvora
