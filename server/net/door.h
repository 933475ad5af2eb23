#pragma once

#include <boost/asio/ip/address.hpp>
#include <map>
#include <string>

#include "base/rateLimit.h"

namespace kelvora::server {

namespace asio = boost::asio;

/// A mapped IPv4 address as the IPv4 address, and an IPv6 address without its interface.
asio::ip::address unmapped(const asio::ip::address& address);

/// What one host can be held to: its address, or the first 64 bits of it in IPv6, of which every host has a whole
/// range. An IPv4 address in IPv6 clothes is that IPv4 address.
std::string networkOf(const asio::ip::address& address);

/// Decides who may come in, so that no single address takes the places or the time of all.
class Door {
 public:
  static constexpr int mostOfNetwork = 16;  ///< connections at a time
  static constexpr double connectionsPerSecond = 2;
  static constexpr double burst = 32;
  static constexpr std::size_t mostNetworks = 4096;  ///< that are remembered; more are held to nothing of their past

  /// Whether a connection may come in; then `left` is due for it.
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
