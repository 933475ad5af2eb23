#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/winsock.h"

namespace kelvora {

/// A TCP connection through the system's sockets. Its events are raised within serveSockets alone, one at a time, so a
/// handler may close, reopen or destroy its socket.
class Win32Socket : public SocketPeer {
 public:
  explicit Win32Socket(Winsock& owner);
  ~Win32Socket() override;

  SocketState state() const override { return state_; }
  void connect(const std::string& host, int port) override;
  void close() override;
  void send(std::string_view data) override;
  std::string take() override;

  /// Raises at most one event. True if there may be another.
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

/// Raises at most one event of each socket. True if there may be others.
bool serveSockets();

}  // namespace kelvora
