#include "server/net/door.h"

#include <algorithm>

namespace kelvora::server {

namespace {

constexpr auto timeToForgive = static_cast<Millis>(1000 * Door::burst / Door::connectionsPerSecond);

}  // namespace

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

bool Door::admits(const std::string& network, Millis now) {
  if (visitors_.size() >= maxNetworks && !visitors_.contains(network)) forget(now);
  Visitor& visitor = visitors_[network];
  visitor.lastSeen = now;
  if (!visitor.connections.allows(now) || visitor.inside >= maxPerNetwork) return false;
  ++visitor.inside;
  return true;
}

void Door::left(const std::string& network) {
  if (const auto found = visitors_.find(network); found != visitors_.end()) --found->second.inside;
}

void Door::forget(Millis now) {
  const auto isGone = [](const auto& entry) { return entry.second.inside == 0; };
  std::erase_if(visitors_,
                [&](const auto& entry) { return isGone(entry) && now - entry.second.lastSeen >= timeToForgive; });
  if (visitors_.size() >= maxNetworks) std::erase_if(visitors_, isGone);
}

}  // namespace kelvora::server
