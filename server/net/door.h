#pragma once

#include <boost/asio/ip/address.hpp>
#include <map>
#include <string>

#include "base/rateLimit.h"

namespace kelvora::server {

namespace asio = boost::asio;

/// Turns a mapped IPv4 address into the IPv4 address, and drops an IPv6 address's scope (its interface).
asio::ip::address unmapped(const asio::ip::address& address);

/// The identity of a host for limits: its address, or the first 64 bits in IPv6, where every host has a whole range. An
/// IPv4 address mapped to IPv6 counts as the IPv4 address.
std::string networkOf(const asio::ip::address& address);

/// Decides who may connect, so that no single address takes all slots or all time.
class Door {
 public:
  static constexpr int maxPerNetwork = 16;  ///< maximum connections at a time from one network
  static constexpr double connectionsPerSecond = 2;
  static constexpr double burst = 32;
  static constexpr std::size_t maxNetworks = 4096;  ///< maximum number of networks remembered

  /// True if a connection may come in. Call `left` when an admitted one ends.
  bool admits(const std::string& network, Millis now);
  void left(const std::string& network);

 private:
  struct Visitor {
    int inside = 0;
    Millis lastSeen = 0;
    RateLimit connections{connectionsPerSecond, burst};
  };

  void forget(Millis now);

  std::map<std::string, Visitor> visitors_;
};

}  // namespace kelvora::server
