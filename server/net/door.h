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

  /// True if the network has fewer connections than it may have.
  bool hasPlace(const std::string& network) const;
  /// Charges the network for a new connection. False if it makes them too fast.
  [[nodiscard]] bool allowsConnection(const std::string& network, Millis now);
  /// Takes a connection in without charging for a new one, such as a proxy's that has served another client. Always
  /// true without a limit. Otherwise false if the network has no place. Call `left` when the connection ends.
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
