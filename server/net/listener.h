#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "server/net/asio.h"

namespace kelvora::server {

/// A port that accepts connections.
class Listener {
 public:
  struct Handlers {
    std::function<void(asio::ip::tcp::socket socket)> onConnection;
    /// Called when accepting fails, usually for lack of descriptors. Nothing is accepted until `resume`.
    std::function<void(const std::string& reason)> onFailure;
  };

  /// Listens at once. Port 0 is any free one. A bad address or port throws std::system_error, whose text names both.
  Listener(asio::io_context& context, const std::string& address, std::uint16_t port, Handlers handlers);

  /// Accepts again after a failure. Does nothing otherwise.
  void resume();
  /// Stops listening. No handler is called afterwards.
  void close();
  std::uint16_t port() const { return acceptor_.local_endpoint().port(); }
  /// "127.0.0.1:2010"
  std::string endpointText() const;

 private:
  void acceptMore();

  asio::ip::tcp::acceptor acceptor_;
  Handlers handlers_;
  bool isAccepting_ = true;
};

}  // namespace kelvora::server
