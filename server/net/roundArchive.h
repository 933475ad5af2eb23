#pragma once

#include <functional>
#include <optional>
#include <string>

#include "server/arena/arena.h"
#include "server/replays/roundPlayer.h"
#include "server/replays/roundRecorder.h"
#include "server/replays/settings.h"
#include "server/system/serverHost.h"

namespace kelvora::server {

/// Records the rounds of an arena, or shows its spectators a recorded one.
class RoundArchive {
 public:
  /// Nothing is recorded without a folder, or shown without a file. Throws std::runtime_error if the folder or the file
  /// can't be used.
  RoundArchive(Arena& arena, ServerHost& host, const ReplaySettings& settings, const std::string& replayFile);

  bool isReplay() const { return player_.has_value(); }
  /// Begins and ends recordings, and shows what is due. Rounds are recorded while somebody plays.
  void tick(Millis now, const std::function<bool()>& isPlayed);
  /// Records a message to all players.
  void add(const std::string& frame, Millis now);
  /// Shows a new spectator the players of the recorded round.
  void show(const std::function<void(const std::string& frame)>& toNewcomer) const;
  /// Ends the recording in progress.
  void end(Millis now);

 private:
  void record(Millis now, const std::function<bool()>& isPlayed);

  Arena& arena_;
  std::optional<RoundRecorder> recorder_;  // nothing if rounds aren't recorded
  int recordedRound_ = 0;                  // its number
  std::optional<RoundPlayer> player_;      // nothing for a game
};

}  // namespace kelvora::server
