#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "server/replays/roundFile.h"
#include "server/replays/settings.h"
#include "server/system/serverHost.h"

namespace kelvora::server {

/// Keeps rounds in files, one each. They are compressed and written on another thread, in one step, so that a folder
/// has whole ones only. Errors are logged and cost the round's file.
class RoundRecorder {
 public:
  static constexpr Millis minLength = 10'000;  ///< of a round that is kept

  /// Throws std::runtime_error if the folder can't be made or written. A disk that is full now is no error.
  RoundRecorder(ServerHost& host, ReplaySettings settings);

  bool isRecording() const { return round_.has_value(); }
  void begin(Millis now);
  /// Adds a message to all players. Does nothing between rounds.
  void add(std::string_view frame, Millis now);
  /// Ends the round and stores it, unless it was too short. Does nothing between rounds.
  void end(Millis now);

 private:
  ServerHost& host_;
  const ReplaySettings settings_;
  std::optional<Moments> round_;
  Millis begun_ = 0;
  std::int64_t begunAt_ = 0;  // seconds since 1970
};

/// "2026-11-22T17.54.05Z", for seconds since 1970. Not thread-safe.
std::string nameOfRound(std::int64_t begunAt);

/// Stores a round, and removes the oldest ones that exceed the settings. Returns the error; empty if there was none.
std::string storeRound(const ReplaySettings& settings, const Moments& round, const std::string& name);

}  // namespace kelvora::server
