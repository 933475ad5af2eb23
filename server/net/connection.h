#pragma once

#include <algorithm>
#include <array>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "server/arena/arena.h"
#include "server/net/frameReader.h"

namespace kelvora::server {

/// One client's socket. It lives until the last of its operations has come back.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  using Clock = std::chrono::steady_clock;
  static constexpr std::size_t longestQueue = std::size_t{256} << 10;  ///< bytes not yet taken by the client
  /// Bytes taken from the client, with bursts of half a second's worth: more than fifty times what the game sends.
  /// Who sends more waits.
  static constexpr std::size_t bytesPerSecond = std::size_t{32} << 10;

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
  /// When the client last sent anything.
  Clock::time_point lastHeard() const { return lastHeard_; }
  /// The server could not listen for this long.
  void excuse(Clock::duration time) { lastHeard_ = std::min(lastHeard_ + time, Clock::now()); }

 private:
  void readMore();
  /// Reads on at once, or as soon as so many bytes more may be taken.
  void readMoreAfter(std::size_t size);
  void writeMore();

  asio::ip::tcp::socket socket_;
  const ClientId client_;
  Handlers handlers_;
  FrameReader reader_;
  // Small, so that those who flood the server take turns with those who do not.
  std::array<char, 512> arrived_;
  asio::steady_timer pause_;
  Clock::time_point lastHeard_ = Clock::now();
  Clock::time_point paidUntil_;
  std::string underWay_;  // handed to the socket
  std::string queued_;    // behind it
  bool hangingUp_ = false;
  bool closed_ = false;
};

}  // namespace kelvora::server
