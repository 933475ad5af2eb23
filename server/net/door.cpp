#include "server/net/door.h"

namespace kelvora::server {

namespace {

constexpr auto timeToForgive = static_cast<Millis>(1000 * Door::burst / Door::connectionsPerSecond);

}  // namespace

bool Door::allowsConnection(const std::string& network, Millis now) {
  return visitor(network, now).connections.allows(now);
}

bool Door::hasPlace(const std::string& network) const {
  const auto found = visitors_.find(network);
  return found == visitors_.end() || found->second.inside < maxPerNetwork;
}

bool Door::takesIn(const std::string& network, Millis now, bool isLimited) {
  Visitor& newcomer = visitor(network, now);
  if (isLimited && newcomer.inside >= maxPerNetwork) return false;
  ++newcomer.inside;
  return true;
}

Door::Visitor& Door::visitor(const std::string& network, Millis now) {
  if (visitors_.size() >= maxNetworks && !visitors_.contains(network)) forget(now);
  Visitor& found = visitors_[network];
  found.lastSeen = now;
  return found;
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
