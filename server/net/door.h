#pragma once

#include <map>
#include <string>

#include "base/rateLimit.h"

namespace kelvora::server {

/// Decides who may connect, so that no single address takes all slots or all time.
class Door {
 public:
  static constexpr int maxPerNetwork = 16;  ///< maximum connections at a time from one network
  static constexpr double connectionsPerSecond = 2;
  static constexpr double burst = 32;
  static constexpr std::size_t maxNetworks = 4096;  ///< maximum number of networks remembered

  struct Terms {
    bool isNew = true;       ///< counts for the network's rate, unlike a proxy's requests for pages
    bool isLimited = true;   ///< without limits it doesn't count for the rate and isn't refused
    bool takesOver = false;  ///< keeps its own place, or gets that of another connection
  };

  /// True if the network has fewer connections than it may have.
  bool hasPlace(const std::string& network) const;
  /// Lets a connection in. Call `left` when it ends. False, without counting it, if the network has no place for it or
  /// makes connections too fast.
  [[nodiscard]] bool admit(const std::string& network, Millis now, const Terms& terms);
  void left(const std::string& network);

 private:
  struct Visitor {
    int inside = 0;
    Millis lastSeen = 0;
    RateLimit connections{connectionsPerSecond, burst};
  };

  Visitor& visitor(const std::string& network, Millis now);
  void forget(Millis now);

  std::map<std::string, Visitor> visitors_;
};

}  // namespace kelvora::server
