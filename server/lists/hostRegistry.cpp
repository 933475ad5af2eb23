#include "server/lists/hostRegistry.h"

#include <algorithm>

namespace kelvora::server {

HostRegistry::Answer HostRegistry::announce(const std::string& network, const Announcement& announcement, Millis now,
                                            bool isTrusted) {
  forget(now);
  const Key key{announcement.host.address, announcement.host.port};
  if (const auto found = hosts_.find(key); found != hosts_.end()) {
    if (found->second.network != network) return Answer::anothers;
    found->second = {network, announcement, now};
    return Answer::done;
  }
  if (hosts_.size() >= maxHosts) return Answer::full;
  const auto ofNetwork =
      std::ranges::count_if(hosts_, [&](const auto& entry) { return entry.second.network == network; });
  if (!isTrusted && static_cast<std::size_t>(ofNetwork) >= maxPerNetwork) return Answer::tooManyOfNetwork;
  hosts_.insert({key, {network, announcement, now}});
  return Answer::done;
}

HostRegistry::Answer HostRegistry::withdraw(const std::string& network, const HostEntry& host, Millis now) {
  forget(now);
  const auto found = hosts_.find({host.address, host.port});
  if (found == hosts_.end()) return Answer::done;
  if (found->second.network != network) return Answer::anothers;
  hosts_.erase(found);
  return Answer::done;
}

std::string HostRegistry::records(const HostQuery& query, Millis now) {
  forget(now);
  std::string records;
  for (const auto& [key, host] : hosts_) {
    if (matches(host.announcement.host, host.announcement.version, query)) {
      records += hostRecord(host.announcement.host);
    }
  }
  return records;
}

void HostRegistry::forget(Millis now) {
  std::erase_if(hosts_, [&](const auto& entry) { return now - entry.second.since >= lifetime; });
}

}  // namespace kelvora::server
