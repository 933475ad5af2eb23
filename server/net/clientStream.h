#pragma once

#include <boost/asio/buffer.hpp>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "server/net/asio.h"

namespace kelvora::server {

/// A client's bytes, both ways: straight over TCP or in the binary messages of a WebSocket. At most one read and one
/// write are under way at a time. Handlers run on the socket's executor, never from within a call of this object's;
/// they keep the object alive.
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

  /// Reads whatever comes next, possibly nothing at all. A text message, a message that is too long, and too many
  /// control frames are errors.
  void readSome(asio::mutable_buffer buffer, Handler handler);
  /// Writes everything.
  void write(asio::const_buffer buffer, Handler handler);
  /// Continues as a WebSocket. `request` is the text of the request that asked for it, `rest` what has been read behind
  /// it. Nothing else may be under way.
  void upgrade(const std::string& request, std::string_view rest, Handler handler);
  /// Tells the client that nothing more comes. Nothing may be written afterwards. `whenDone` keeps the object alive.
  void endSending(Handler whenDone);
  /// Ends every operation with an error.
  void close();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kelvora::server
