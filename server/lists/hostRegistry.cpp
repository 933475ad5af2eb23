#include "server/lists/hostRegistry.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "server/lists/listTable.h"

namespace kelvora::server {

HostRegistry::Answer HostRegistry::announce(const std::string& network, const Announcement& announcement, Millis now,
                                            bool isTrusted) {
  forget(now);
  const Key key{announcement.host.address, announcement.host.port};
  if (const auto found = hosts_.find(key); found != hosts_.end()) {
    if (found->second.network != network) return Answer::notOwner;
    if (found->second.announcement != announcement) retireTexts();
    found->second = {network, announcement, now};
    return Answer::done;
  }
  if (hosts_.size() >= maxHosts) return Answer::full;
  const auto ofNetwork =
      std::ranges::count_if(hosts_, [&](const auto& entry) { return entry.second.network == network; });
  if (!isTrusted && static_cast<std::size_t>(ofNetwork) >= maxPerNetwork) return Answer::tooManyFromNetwork;
  hosts_.insert({key, {network, announcement, now}});
  retireTexts();
  return Answer::done;
}

HostRegistry::Answer HostRegistry::withdraw(const std::string& network, const HostEntry& host, Millis now) {
  forget(now);
  const auto found = hosts_.find({host.address, host.port});
  if (found == hosts_.end()) return Answer::done;
  if (found->second.network != network) return Answer::notOwner;
  hosts_.erase(found);
  retireTexts();
  return Answer::done;
}

std::shared_ptr<const std::string> HostRegistry::listing(const HostQuery& query, Millis now) {
  forget(now);
  if (const auto found = listings_.find(query); found != listings_.end()) return found->second;
  std::string text;
  bool isVersionKnown = false;
  for (const auto& [key, host] : hosts_) {
    const auto& [version, entry] = host.announcement;
    if (matches(entry, version, query)) text += hostRecord(entry);
    isVersionKnown = isVersionKnown || version == query.version;
  }
  text += endOfList;
  auto shared = std::make_shared<std::string>(std::move(text));
  if (isVersionKnown) listings_.emplace(query, shared);
  return shared;
}

std::shared_ptr<const std::string> HostRegistry::table(Millis now) {
  forget(now);
  if (table_) return table_;
  std::vector<const HostEntry*> entries;
  for (const auto& [key, host] : hosts_) entries.push_back(&host.announcement.host);
  std::ranges::stable_sort(entries, std::greater(), &HostEntry::players);
  std::string text;
  for (const HostEntry* entry : entries) text += listTableRow(*entry);
  return table_ = std::make_shared<std::string>(text + listTableEnd());
}

void HostRegistry::forget(Millis now) {
  const auto isOver = [&](const auto& entry) { return now - entry.second.since >= lifetime; };
  if (std::erase_if(hosts_, isOver) > 0) retireTexts();
}

void HostRegistry::retireTexts() {
  std::erase_if(outdated_, [](const auto& text) { return text.use_count() == 1; });
  const auto retire = [this](std::shared_ptr<std::string>& text) {
    if (text.use_count() > 1) outdated_.push_back(std::move(text));
  };
  for (auto& [query, text] : listings_) retire(text);
  listings_.clear();
  retire(table_);
  table_.reset();
  std::size_t size = 0;
  for (const auto& text : outdated_) size += text->size();
  for (; size > maxOutdated; outdated_.pop_front()) {
    size -= outdated_.front()->size();
    std::string().swap(*outdated_.front());
  }
}

}  // namespace kelvora::server
