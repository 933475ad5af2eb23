#pragma once

#include <boost/asio/ip/address.hpp>
#include <cstddef>
#include <string>
#include <vector>

namespace kelvora::server {

/// IP addresses and networks, such as 192.0.2.0/24, from an option, separated by commas; "*" is every address.
class AddressList {
 public:
  /// Throws std::runtime_error, whose text begins with the option's name, if the text has anything else.
  AddressList(const std::string& option, const std::string& text);

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
