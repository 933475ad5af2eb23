#pragma once

#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "base/millis.h"
#include "server/lists/announcement.h"

namespace kelvora::server {

/// The servers announced to a list. An entry lasts for a quarter of an hour after its last announcement, which is three
/// of PublishSchedule's intervals. Only the host that announced it can change or withdraw it.
class HostRegistry {
 public:
  static constexpr Millis lifetime = 900'000;
  static constexpr std::size_t usualMaxHosts = 1000;
  static constexpr std::size_t maxPerNetwork = 32;  ///< entries announced by one host, unless it is trusted
  static constexpr std::size_t maxShown = 1000;     ///< entries in a listing or table, which clients can still read
  static constexpr Millis maxAge = 1'000;           ///< of a listing or table, if there are more entries than that
  static constexpr std::size_t maxListings = 32;    ///< kept at a time
  static constexpr std::size_t maxOutdated = std::size_t{1} << 20;  ///< bytes of old listings that are still in use

  explicit HostRegistry(std::size_t maxHosts = usualMaxHosts) : maxHosts_(maxHosts) {}

  /// `notOwner`: another host has announced the entry.
  enum class Answer { done, notOwner, tooManyFromNetwork, full };

  /// Adds or updates an entry. `network` identifies the announcing host. The entry's address must not be empty.
  Answer announce(const std::string& network, const Announcement& announcement, Millis now, bool isTrusted = false);
  /// Removes the entry with this address and port, if there is one.
  Answer withdraw(const std::string& network, const HostEntry& host, Millis now);
  /// The matching records, concatenated, and the end of the list. Of more than `maxShown`, those come first that people
  /// can join, then those with most players. Callers share one text until an entry changes. A large registry's text may
  /// be up to `maxAge` old. Old texts that are still held are emptied beyond `maxOutdated`.
  std::shared_ptr<const std::string> listing(const HostQuery& query, Millis now);
  /// The rows of a page's table, those with most players first, and what follows them. Shared likewise.
  std::shared_ptr<const std::string> table(Millis now);
  std::size_t size() const { return hosts_.size(); }

 private:
  using Key = std::pair<std::string, std::uint16_t>;  // address and port
  struct Host {
    Key key;
    std::string network;
    Announcement announcement;
    Millis since;
  };
  using Hosts = std::list<Host>;
  struct Text {
    std::shared_ptr<std::string> text;
    std::uint64_t edition = 0;  // of the entries
    Millis made = 0;
  };

  void forget(Millis now);
  void remove(Hosts::iterator host);
  bool isFresh(const Text& text, Millis now) const;
  /// Makes sure that another listing can be kept.
  void makeRoom();
  /// Puts aside a text that may still be in use.
  void retire(Text& text);

  const std::size_t maxHosts_;
  Hosts hosts_;  // the longest unannounced first
  std::map<Key, Hosts::iterator> byKey_;
  std::map<std::string, std::size_t> ofNetwork_;
  std::uint64_t edition_ = 1;  // changes with the entries
  std::map<HostQuery, Text> listings_;
  Text table_;
  std::deque<std::shared_ptr<std::string>> outdated_;  // oldest first
};

}  // namespace kelvora::server
