#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <string>

#include "server/arena/clientId.h"
#include "server/net/asio.h"

namespace kelvora::server {

/// A connection that has been accepted, and from which nothing has been read.
struct Newcomer {
  Socket socket;
  asio::ip::address address;
  std::string network;  ///< the one that the door's limits apply to
  Role role = Role::player;
  std::chrono::steady_clock::time_point since{};
};

/// Newcomers beyond the limits of their network wait here for a moment. Browsers open many connections at once, and
/// several people of one house may open the page at the same time.
class WaitingRoom {
 public:
  static constexpr std::size_t maxPerNetwork = 32;
  static constexpr std::size_t maxWaiting = 64;  ///< of all networks
  static constexpr std::chrono::seconds patience{10};

  bool has(const std::string& network) const { return count(network) > 0; }
  /// False, with the newcomer untouched, if there is no room.
  bool add(Newcomer& newcomer);
  /// Calls `enter` for each newcomer, the first one first, until it returns false for one of their network. Those who
  /// have waited for `patience` are dropped, and `refuse` gets their network.
  void letIn(std::chrono::steady_clock::time_point now, const std::function<bool(Newcomer&)>& enter,
             const std::function<void(const std::string&)>& refuse);
  /// Closes all connections.
  void close() { newcomers_.clear(); }

 private:
  std::size_t count(const std::string& network) const;

  std::list<Newcomer> newcomers_;
};

}  // namespace kelvora::server
