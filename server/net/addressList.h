#pragma once

#include <boost/asio/ip/address.hpp>
#include <string>
#include <vector>

namespace kelvora::server {

/// IP addresses from an option, separated by commas; "*" is every address.
class AddressList {
 public:
  /// Throws std::runtime_error, whose text begins with the option's name, if the text has anything else.
  AddressList(const std::string& option, const std::string& text);

  /// Equates an IPv4 address and the IPv6 address that it is mapped to.
  bool has(const boost::asio::ip::address& address) const;

 private:
  bool hasAll_ = false;
  std::vector<boost::asio::ip::address> addresses_;
};

}  // namespace kelvora::server
