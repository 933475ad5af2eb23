#pragma once

#include <boost/asio/ip/address.hpp>
#include <optional>
#include <string>

namespace kelvora::server {

/// Turns a mapped IPv4 address into the IPv4 address, and drops an IPv6 address's scope (its interface).
boost::asio::ip::address unmapped(const boost::asio::ip::address& address);

/// The identity of a host for limits and bans: its address, or the first 64 bits in IPv6, where every host has a whole
/// range. An IPv4 address mapped to IPv6 counts as the IPv4 address.
std::string networkOf(const boost::asio::ip::address& address);

/// The network that a person has written: an address, or one with "/64". Nothing if it is anything else.
std::optional<std::string> readNetwork(const std::string& text);

}  // namespace kelvora::server
