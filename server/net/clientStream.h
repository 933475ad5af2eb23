#pragma once

#include <boost/asio/buffer.hpp>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "server/net/asio.h"

namespace kelvora::server {

/// A client's bytes in both directions, over plain TCP or in the binary messages of a WebSocket. At most one read and
/// one write may be pending. Handlers run on the socket's executor, never from within a call of this object, and keep
/// it alive.
class ClientStream {
 public:
  using Handler = std::function<void(error_code error, std::size_t size)>;

  static constexpr std::size_t maxMessage = std::size_t{64} << 10;  ///< bytes of a WebSocket message
  static constexpr double controlFramesPerSecond = 2;
  static constexpr double controlFrameBurst = 20;

  explicit ClientStream(asio::ip::tcp::socket socket);
  ~ClientStream();
  ClientStream(const ClientStream&) = delete;
  ClientStream& operator=(const ClientStream&) = delete;

  asio::ip::tcp::socket::executor_type executor();
  bool isWebSocket() const;

  /// Reads whatever comes next, possibly nothing. Text messages, messages that are too long, and too many control
  /// frames are errors.
  void readSome(asio::mutable_buffer buffer, Handler handler);
  /// Writes everything.
  void write(asio::const_buffer buffer, Handler handler);
  /// Switches to WebSocket. `request` is the text of the upgrade request, `rest` the bytes read after it. No operation
  /// may be pending.
  void upgrade(const std::string& request, std::string_view rest, Handler handler);
  /// Tells the client that nothing more follows. Nothing may be written afterwards. A WebSocket then reads by itself
  /// until the client has confirmed, and calls `whenDone`. Nothing else may read from it. `whenDone` keeps the object
  /// alive.
  void endSending(Handler whenDone);
  /// Completes every operation with an error.
  void close();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace kelvora::server
