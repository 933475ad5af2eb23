#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/winsock.h"

namespace kelvora {

/// A TCP connection through the system's sockets. Its events are raised within serveSockets alone, one at a time, so a
/// handler may close, reopen or destroy its socket.
class StreamSocket : public SocketPeer {
 public:
  explicit StreamSocket(Winsock& owner);
  ~StreamSocket() override;

  SocketState state() const override { return state_; }
  void connect(const std::string& host, int port) override;
  void close() override;
  void send(std::string_view data) override;
  std::string take() override;

  /// Raises at most one event. True if it did.
  bool serve();

 private:
  struct Connection;

  void startNextAddress();
  void note();
  void receive();
  void flush();
  void fail();
  void drop();

  Winsock& owner_;
  SocketState state_ = sckClosed;
  std::shared_ptr<Connection> connection_;
};

/// Raises at most one event of each socket. Call it when the network is signaled. True if there may be others, for
/// which it signals again.
bool serveSockets();

}  // namespace kelvora
