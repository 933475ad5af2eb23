#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "base/millis.h"
#include "server/lists/announcement.h"

namespace kelvora::server {

/// The servers that have announced themselves to a list, each until an hour after its last announcement. One that
/// another host has announced is not touched: only who announced an entry may change it or take it back.
class HostRegistry {
 public:
  static constexpr Millis lifetime = 3'600'000;
  static constexpr std::size_t mostHosts = 1000;
  static constexpr std::size_t mostOfNetwork = 32;  ///< announced by one host, unless it is trusted

  enum class Answer { done, anothers, tooManyOfNetwork, full };

  /// `network` tells who announces; the entry's address must not be empty.
  Answer announce(const std::string& network, const Announcement& announcement, Millis now, bool isTrusted = false);
  /// Takes the entry of that address and port back; it is no matter whether there is one.
  Answer withdraw(const std::string& network, const HostEntry& host, Millis now);
  /// The records that match, one behind another without a separator.
  std::string records(const HostQuery& query, Millis now);
  std::size_t size() const { return hosts_.size(); }

 private:
  struct Host {
    std::string network;
    Announcement announcement;
    Millis since;
  };
  using Key = std::pair<std::string, std::uint16_t>;  // address and port

  void forget(Millis now);

  std::map<Key, Host> hosts_;
};

}  // namespace kelvora::server
