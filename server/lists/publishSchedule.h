#pragma once

#include <cstddef>

#include "base/millis.h"

namespace kelvora::server {

/// Decides when a server announces itself next: at once at first, then every five minutes. A number of players other
/// than the announced one is announced sooner, but at least ten seconds after the last announcement. After a failure it
/// waits for a minute, even then.
class PublishSchedule {
 public:
  static constexpr Millis interval = 300'000;
  static constexpr Millis newsInterval = 10'000;
  static constexpr Millis retryInterval = 60'000;

  /// The time of the next announcement, on the clock of `begins`. 0 means at once.
  Millis due() const {
    if (!hasTried_) return 0;
    if (hasFailed_) return last_ + retryInterval;
    return last_ + (players_ == announced_ ? interval : newsInterval);
  }
  /// The current number of players.
  void setPlayers(std::size_t players) { players_ = players; }
  /// An announcement begins, with the current number of players.
  void begins(Millis now) {
    hasTried_ = true;
    announced_ = players_;
    last_ = now;
  }
  /// The announcement has ended.
  void ends(bool isSuccess) { hasFailed_ = !isSuccess; }

 private:
  bool hasTried_ = false;
  bool hasFailed_ = false;
  std::size_t players_ = 0;
  std::size_t announced_ = 0;
  Millis last_ = 0;
};

}  // namespace kelvora::server
