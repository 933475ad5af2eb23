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

  /// True if a new connection may come in. Call `left` when an admitted one ends.
  [[nodiscard]] bool admits(const std::string& network, Millis now) {
    return allowsConnection(network, now) && takesIn(network, now);
  }
  /// True if the network has fewer connections than it may have.
  bool hasPlace(const std::string& network) const;
  /// True if the network may make a new connection now, apart from how many it has.
  [[nodiscard]] bool allowsConnection(const std::string& network, Millis now);
  /// The same as `admits` for a connection that isn't new, as of a proxy that has served somebody else on it. Always
  /// true without a limit.
  [[nodiscard]] bool takesIn(const std::string& network, Millis now, bool isLimited = true);
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
