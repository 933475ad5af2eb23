#pragma once

#include <boost/asio/ip/address.hpp>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kelvora::server {

/// IP addresses and networks, such as 192.0.2.0/24, from an option.
class AddressList {
 public:
  /// Reads entries separated by commas, of which "*" is every address. Nothing if the text has anything else.
  static std::optional<AddressList> read(const std::string& text);

  /// Equates an IPv4 address and the IPv6 address that it is mapped to.
  bool has(const boost::asio::ip::address& address) const;

 private:
  struct Network {
    boost::asio::ip::address address;
    std::size_t bits;  ///< of the address that belong to the network
  };

  bool hasAll_ = false;
  std::vector<Network> networks_;
};

}  // namespace kelvora::server
