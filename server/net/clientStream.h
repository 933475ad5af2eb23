#pragma once

#include <boost/asio/buffer.hpp>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "server/net/asio.h"

namespace kelvora::server {

/// A client's bytes in both directions, over plain TCP or in the binary messages of a WebSocket. At most one read and
/// one write may be pending.
class ClientStream {
 public:
  /// Gets the results of operations, on the socket's executor, never from within a call of the stream. Operations keep
  /// it alive, and it has to keep the stream alive.
  class User {
   public:
    /// An error means that nothing more will come, or be written.
    virtual void arrived(error_code error, std::size_t size) = 0;
    virtual void written(error_code error) = 0;
    virtual void upgraded(error_code error) = 0;
    /// The client has confirmed the end, or never will.
    virtual void ended() = 0;

   protected:
    ~User() = default;
  };

  static constexpr std::size_t maxMessage = std::size_t{64} << 10;  ///< bytes of a WebSocket message
  static constexpr double controlFramesPerSecond = 2;
  static constexpr double controlFrameBurst = 20;

  explicit ClientStream(Socket socket);
  ~ClientStream();
  ClientStream(const ClientStream&) = delete;
  ClientStream& operator=(const ClientStream&) = delete;

  Socket::executor_type executor();
  bool isWebSocket() const;
  /// Why an operation has failed, for the log.
  std::string reasonOf(error_code error) const;

  /// Reads whatever comes next, possibly nothing. Text messages, messages that are too long, and too many control
  /// frames are errors.
  void readSome(asio::mutable_buffer buffer, std::shared_ptr<User> user);
  /// Writes everything.
  void write(asio::const_buffer buffer, std::shared_ptr<User> user);
  /// Switches to WebSocket. `request` is the text of the upgrade request, `rest` the bytes read after it. No operation
  /// may be pending.
  void upgrade(const std::string& request, std::string_view rest, std::shared_ptr<User> user);
  /// Tells the client that nothing more follows. Nothing may be written afterwards. A WebSocket then reads by itself
  /// until the client has confirmed, and tells the user. Nothing else may read from it.
  void endSending(std::shared_ptr<User> user);
  /// Lets `close` drop what the client hasn't taken.
  void discardUnread();
  /// Completes every operation with an error. Call nothing afterwards.
  void close();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace kelvora::server
