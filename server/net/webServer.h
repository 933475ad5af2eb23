#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "server/lists/hostList.h"

namespace kelvora::server {

/// Serves the list of published games - this one, and those that announce themselves here - and the update file over
/// HTTP, on a thread of its own. It answers one request a connection and reads no bodies. All calls are for one other
/// thread.
class WebServer {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr unsigned int mostConnections = 32;
  static constexpr std::size_t longestRequest = 4096;  ///< bytes, about, that a connection's memory holds
  static constexpr std::chrono::seconds timeLimit{5};  ///< of a connection from its first to its last byte

  /// Listens at once; an address that is no good throws std::system_error. Port 0 is any free one. Who announces
  /// himself must give the key, unless it is empty.
  WebServer(const std::string& address, std::uint16_t port, std::string version, std::string key = {});
  /// Cuts off who is still connected.
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  /// "127.0.0.1:80"
  const std::string& endpointText() const;
  /// What the list says from now on.
  void publish(HostEntry host);
  /// Cuts off the connections that have had their time. To be called several times a second.
  void dropOverdue(Clock::time_point now);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kelvora::server
