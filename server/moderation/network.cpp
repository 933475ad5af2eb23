#include "server/moderation/network.h"

#include <algorithm>

namespace kelvora::server {

namespace asio = boost::asio;

asio::ip::address unmapped(const asio::ip::address& address) {
  if (address.is_v4()) return address;
  const asio::ip::address_v6 bare(address.to_v6().to_bytes());
  if (bare.is_v4_mapped()) return asio::ip::make_address_v4(asio::ip::v4_mapped, bare);
  return bare;
}

std::string networkOf(const asio::ip::address& address) {
  const asio::ip::address host = unmapped(address);
  if (host.is_v4()) return host.to_string();
  asio::ip::address_v6::bytes_type bytes = host.to_v6().to_bytes();
  std::fill(bytes.begin() + 8, bytes.end(), static_cast<unsigned char>(0));
  return asio::ip::address_v6(bytes).to_string() + "/64";
}

std::optional<std::string> readNetwork(const std::string& text) {
  const std::size_t slash = text.find('/');
  boost::system::error_code error;
  const auto address = asio::ip::make_address(text.substr(0, slash), error);
  if (error) return std::nullopt;
  const std::string network = networkOf(address);
  if (slash != text.npos && (text.substr(slash) != "/64" || !network.ends_with("/64"))) return std::nullopt;
  return network;
}

}  // namespace kelvora::server
