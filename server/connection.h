#pragma once

#include <array>
#include <asio/ip/tcp.hpp>
#include <functional>
#include <memory>
#include <string>

#include "server/arena.h"
#include "server/frameReader.h"

namespace kelvora::server {

/// One client's socket. It lives until the last of its operations has come back.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  static constexpr std::size_t longestQueue = std::size_t{1} << 20;  ///< bytes not yet taken by the client

  struct Handlers {
    std::function<void(ClientId client, std::string_view text)> onFrame;
    /// Once, never from within a call of this object's.
    std::function<void(ClientId client, const std::string& reason)> onClosed;
  };

  Connection(asio::ip::tcp::socket socket, ClientId client, Handlers handlers);

  void start();
  /// Queues a frame; a client that does not take what is queued for it is dropped.
  void send(const std::string& frame);
  /// Ends the sending once the queue is empty. The client has until the next `close` to end the connection itself.
  void hangUp();
  void close(const std::string& reason);

 private:
  void readMore();
  void writeMore();

  asio::ip::tcp::socket socket_;
  const ClientId client_;
  Handlers handlers_;
  FrameReader reader_;
  std::array<char, 8192> arrived_;
  std::string underWay_;  // handed to the socket
  std::string queued_;    // behind it
  bool hangingUp_ = false;
  bool closed_ = false;
};

}  // namespace kelvora::server
