#include "server/lists/hostRegistry.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <vector>

#include "server/lists/listTable.h"

namespace kelvora::server {

namespace {

/// How much a game belongs at the top of a long list: those that people can join, then those with company.
std::size_t attraction(const HostEntry* entry) {
  const bool isJoinable = !entry->passwordRequired && entry->players < entry->maxPlayers;
  return entry->players + (isJoinable ? std::size_t{1} << 16 : 0);
}

}  // namespace

HostRegistry::Answer HostRegistry::announce(const std::string& network, const Announcement& announcement, Millis now,
                                            bool isTrusted) {
  forget(now);
  const Key key{announcement.host.address, announcement.host.port};
  if (const auto found = byKey_.find(key); found != byKey_.end()) {
    Host& host = *found->second;
    if (host.network != network) return Answer::notOwner;
    if (host.announcement != announcement) ++edition_;
    host.announcement = announcement;
    host.since = now;
    hosts_.splice(hosts_.end(), hosts_, found->second);
    return Answer::done;
  }
  if (hosts_.size() >= maxHosts_) return Answer::full;
  const auto known = ofNetwork_.find(network);
  if (!isTrusted && known != ofNetwork_.end() && known->second >= maxPerNetwork) return Answer::tooManyFromNetwork;
  hosts_.push_back({key, network, announcement, now});
  byKey_.emplace(key, std::prev(hosts_.end()));
  ++ofNetwork_[network];
  ++edition_;
  return Answer::done;
}

HostRegistry::Answer HostRegistry::withdraw(const std::string& network, const HostEntry& host, Millis now) {
  forget(now);
  const auto found = byKey_.find({host.address, host.port});
  if (found == byKey_.end()) return Answer::done;
  if (found->second->network != network) return Answer::notOwner;
  remove(found->second);
  return Answer::done;
}

std::shared_ptr<const std::string> HostRegistry::listing(const HostQuery& query, Millis now) {
  forget(now);
  if (const auto found = listings_.find(query); found != listings_.end()) {
    if (isFresh(found->second, now)) return found->second.text;
    retire(found->second);
    listings_.erase(found);
  }
  std::vector<const HostEntry*> entries;
  bool isVersionKnown = false;
  for (const auto& [key, host] : byKey_) {
    const auto& [version, entry] = host->announcement;
    if (matches(entry, version, query)) entries.push_back(&entry);
    isVersionKnown = isVersionKnown || version == query.version;
  }
  if (entries.size() > maxShown) {
    std::ranges::stable_sort(entries, std::greater(), attraction);
    entries.resize(maxShown);
  }
  auto text = std::make_shared<std::string>();
  for (const HostEntry* entry : entries) *text += hostRecord(*entry);
  *text += endOfList;
  if (isVersionKnown) {
    makeRoom();
    listings_.emplace(query, Text{text, edition_, now});
  }
  return text;
}

std::shared_ptr<const std::string> HostRegistry::table(Millis now) {
  forget(now);
  if (isFresh(table_, now)) return table_.text;
  retire(table_);
  std::vector<const HostEntry*> entries;
  for (const auto& [key, host] : byKey_) entries.push_back(&host->announcement.host);
  std::ranges::stable_sort(entries, std::greater(), &HostEntry::players);
  entries.resize(std::min(entries.size(), maxShown));
  auto text = std::make_shared<std::string>();
  for (const HostEntry* entry : entries) *text += listTableRow(*entry);
  *text += listTableEnd();
  table_ = {text, edition_, now};
  return text;
}

void HostRegistry::forget(Millis now) {
  while (!hosts_.empty() && now - hosts_.front().since >= lifetime) remove(hosts_.begin());
}

void HostRegistry::remove(Hosts::iterator host) {
  const auto ofNetwork = ofNetwork_.find(host->network);
  if (--ofNetwork->second == 0) ofNetwork_.erase(ofNetwork);
  byKey_.erase(host->key);
  hosts_.erase(host);
  ++edition_;
}

bool HostRegistry::isFresh(const Text& text, Millis now) const {
  const bool isLarge = hosts_.size() > maxShown;
  return text.text && (text.edition == edition_ || (isLarge && now - text.made < maxAge));
}

void HostRegistry::makeRoom() {
  if (listings_.size() < maxListings) return;
  const auto oldest = std::ranges::min_element(listings_, {}, [](const auto& entry) { return entry.second.made; });
  retire(oldest->second);
  listings_.erase(oldest);
}

void HostRegistry::retire(Text& text) {
  std::erase_if(outdated_, [](const auto& old) { return old.use_count() == 1; });
  if (text.text.use_count() > 1) outdated_.push_back(text.text);
  text = {};
  std::size_t size = 0;
  for (const auto& old : outdated_) size += old->size();
  for (; size > maxOutdated; outdated_.pop_front()) {
    size -= outdated_.front()->size();
    std::string().swap(*outdated_.front());
  }
}

}  // namespace kelvora::server
