#include "server/net/door.h"

namespace kelvora::server {

namespace {

constexpr auto timeToForgive = static_cast<Millis>(1000 * Door::burst / Door::connectionsPerSecond);

}  // namespace

bool Door::hasPlace(const std::string& network) const {
  const auto found = visitors_.find(network);
  return found == visitors_.end() || found->second.inside < maxPerNetwork;
}

bool Door::admit(const std::string& network, Millis now, const Terms& terms) {
  Visitor& newcomer = visitor(network, now);
  if (terms.isLimited && !terms.takesOver && newcomer.inside >= maxPerNetwork) return false;
  if (terms.isLimited && terms.isNew && !newcomer.connections.allows(now)) return false;
  if (!terms.takesOver) ++newcomer.inside;
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
