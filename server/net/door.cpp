#include "server/net/door.h"

namespace kelvora::server {

namespace {

constexpr auto timeToForgive = static_cast<Millis>(1000 * Door::burst / Door::connectionsPerSecond);

}  // namespace

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
