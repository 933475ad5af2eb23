#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "base/millis.h"
#include "server/lists/announcement.h"

namespace kelvora::server {

/// The servers announced to a list. An entry lasts for an hour after its last announcement. Only the host that
/// announced it can change or withdraw it.
class HostRegistry {
 public:
  static constexpr Millis lifetime = 3'600'000;
  static constexpr std::size_t maxHosts = 1000;
  static constexpr std::size_t maxPerNetwork = 32;  ///< entries announced by one host, unless it is trusted
  static constexpr std::size_t maxOutdated = std::size_t{1} << 20;  ///< bytes of old listings that are still in use

  /// `notOwner`: another host has announced the entry.
  enum class Answer { done, notOwner, tooManyFromNetwork, full };

  /// Adds or updates an entry. `network` identifies the announcing host. The entry's address must not be empty.
  Answer announce(const std::string& network, const Announcement& announcement, Millis now, bool isTrusted = false);
  /// Removes the entry with this address and port, if there is one.
  Answer withdraw(const std::string& network, const HostEntry& host, Millis now);
  /// The matching records, concatenated, and the end of the list. Callers share one text until an entry changes. Old
  /// texts that are still held are emptied beyond `maxOutdated`.
  std::shared_ptr<const std::string> listing(const HostQuery& query, Millis now);
  /// The rows of all entries in a page's table, those with most players first, and what follows them. Shared likewise.
  std::shared_ptr<const std::string> table(Millis now);
  std::size_t size() const { return hosts_.size(); }

 private:
  struct Host {
    std::string network;
    Announcement announcement;
    Millis since;
  };
  using Key = std::pair<std::string, std::uint16_t>;  // address and port

  void forget(Millis now);
  /// The entries have changed.
  void retireTexts();

  std::map<Key, Host> hosts_;
  // Listings for versions without an entry aren't kept, so the number of entries bounds this map.
  std::map<HostQuery, std::shared_ptr<std::string>> listings_;
  std::shared_ptr<std::string> table_;                 // null until somebody asks for it
  std::deque<std::shared_ptr<std::string>> outdated_;  // oldest first
};

}  // namespace kelvora::server
