#pragma once

#include "base/millis.h"

namespace kelvora::server {

/// Decides when a server announces itself next: at once at first, then every five minutes. News is announced sooner,
/// but at least ten seconds after the last announcement. After a failure it waits for a minute, even with news.
class PublishSchedule {
 public:
  static constexpr Millis interval = 300'000;
  static constexpr Millis newsInterval = 10'000;
  static constexpr Millis retryInterval = 60'000;

  /// The time of the next announcement, on the clock of `begins`. 0 means at once.
  Millis due() const {
    if (!hasTried_) return 0;
    if (hasFailed_) return last_ + retryInterval;
    return last_ + (hasNews_ ? newsInterval : interval);
  }
  /// Something to announce has changed.
  void news() { hasNews_ = true; }
  /// An announcement begins, with all news so far.
  void begins(Millis now) {
    hasTried_ = true;
    hasNews_ = false;
    last_ = now;
  }
  /// The announcement has ended.
  void ends(bool isSuccess) { hasFailed_ = !isSuccess; }

 private:
  bool hasTried_ = false;
  bool hasNews_ = false;
  bool hasFailed_ = false;
  Millis last_ = 0;
};

}  // namespace kelvora::server
