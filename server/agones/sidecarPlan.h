#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "base/millis.h"

namespace kelvora::server {

/// Decides what to tell Agones, and when. It is told once that the server is ready, then every two seconds that it
/// works. It is told when people play, so that it keeps the server, and when they have left. It is asked once at which
/// address and port players reach the server.
class SidecarPlan {
 public:
  enum class Call { ready, health, allocate, place, players, shutdown };
  static constexpr std::size_t callCount = 6;
  /// `unknown`: Agones has no such call, and won't have it later.
  enum class Result { done, failed, unknown };

  static constexpr Millis healthInterval = 2'000;  ///< Agones expects one every five seconds by default
  static constexpr Millis retryInterval = 1'000;
  static constexpr Millis stallTime = 10'000;  ///< a server that does nothing for so long doesn't work

  /// The server works, and this many people play.
  void update(std::size_t players, Millis now) {
    players_ = players;
    aliveAt_ = now;
  }
  /// The server has nothing left to do. Nothing else is told from now on.
  void finish() { isFinished_ = true; }

  /// Returns the message that is due now, if any.
  std::optional<Call> next(Millis now) const;
  /// How long to wait for the next call, unless something changes: above 0, at most `healthInterval`.
  Millis wait(Millis now) const;
  /// The number of people to tell.
  std::size_t players() const { return players_; }
  /// The call, about that number of people, has ended.
  void ended(Call call, std::size_t players, Result result, Millis now);
  /// True once Agones knows that nothing is left.
  bool isOver() const { return isOver_; }

 private:
  enum class Known { nothing, ready, allocated };

  bool isWanted(Call call, Millis now) const;

  std::size_t players_ = 0;
  std::optional<Millis> aliveAt_;
  bool isFinished_ = false;
  bool isOver_ = false;
  Known known_ = Known::nothing;
  std::optional<std::size_t> knownPlayers_;
  bool isPlaceKnown_ = false;
  bool isCounting_ = true;
  std::array<Millis, callCount> notBefore_{};
};

}  // namespace kelvora::server
