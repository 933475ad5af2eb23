#include "server/net/addressList.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "base/text.h"
#include "server/moderation/network.h"

namespace kelvora::server {

namespace {

std::string refusal(const std::string& option, const std::string& entry) {
  return option + " must have IP addresses, not \"" + entry + "\"";
}

}  // namespace

AddressList::AddressList(const std::string& option, const std::string& text) {
  std::istringstream entries(text);
  for (std::string entry; std::getline(entries, entry, ',');) {
    entry = trimBlanks(entry);
    if (entry == "*") {
      hasAll_ = true;
      continue;
    }
    boost::system::error_code error;
    addresses_.push_back(unmapped(asio::ip::make_address(entry, error)));
    if (error) throw std::runtime_error(refusal(option, entry));
  }
}

bool AddressList::has(const boost::asio::ip::address& address) const {
  return hasAll_ || std::ranges::find(addresses_, unmapped(address)) != addresses_.end();
}

}  // namespace kelvora::server
