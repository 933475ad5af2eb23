#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "server/net/gameServer.h"

namespace kelvora::server {

/// A free loopback port that a list accepts; the system's own choice would be too high. It stays reserved until the
/// program ends: a socket is bound to it, which keeps other programs from choosing it, but allows a listener.
inline std::uint16_t freeListedPort() {
  static std::mt19937 random(std::random_device{}());
  static asio::io_context context;
  static std::vector<asio::ip::tcp::acceptor> reserved;
  for (;;) {
    const auto port = std::uniform_int_distribution<std::uint16_t>(20'000, maxListedPort)(random);
    asio::ip::tcp::acceptor probe(context, asio::ip::tcp::v4());
    error_code error;
    probe.bind({asio::ip::address_v4::loopback(), port}, error);
    if (error) continue;
    probe.set_option(asio::socket_base::reuse_address(true));  // only now: it would share the port with other probes
    reserved.push_back(std::move(probe));
    return port;
  }
}

/// A server on free loopback ports, on its own thread.
class RunningServer {
 public:
  explicit RunningServer(Options options = {})
      : server_(context_, onAnyPort(options), [this](const std::string& line) {
          const std::lock_guard lock(mutex_);
          lines_.push_back(line);
        }) {}
  RunningServer(const RunningServer&) = delete;
  RunningServer& operator=(const RunningServer&) = delete;
  ~RunningServer() {
    asio::post(context_, [this] {
      server_.stop();
      server_.stop();  // doesn't wait for remaining clients
    });
    thread_.join();
  }

  std::uint16_t port() const { return port_; }
  std::string endpointText() const { return endpointText_; }
  std::uint16_t webPort() const { return webPort_; }
  std::uint16_t spectatorPort() const { return spectatorPort_; }
  std::vector<std::string> log() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  static Options onAnyPort(Options options) {
    options.port = freeListedPort();
    if (options.webPort) options.webPort = 0;
    if (options.rules.spectators > 0) options.spectatorPort = 0;
    return options;
  }
  static std::uint16_t portOf(const std::string& endpoint) {
    return endpoint.empty() ? std::uint16_t{0}
                            : static_cast<std::uint16_t>(std::stoi(endpoint.substr(endpoint.rfind(':') + 1)));
  }

  mutable std::mutex mutex_;  // of the lines
  std::vector<std::string> lines_;
  asio::io_context context_;
  GameServer server_;
  const std::uint16_t port_ = server_.port();
  const std::string endpointText_ = server_.endpointText();
  const std::uint16_t webPort_ = portOf(server_.webEndpointText());
  const std::uint16_t spectatorPort_ = portOf(server_.spectatorEndpointText());
  std::thread thread_{[this] { context_.run(); }};
};

}  // namespace kelvora::server
