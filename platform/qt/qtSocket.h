#pragma once

#include <QTcpSocket>
#include <memory>
#include <string>
#include <string_view>

#include "platform/winsock.h"

namespace kelvora {

/// A TCP connection through Qt. Never raises the game's events from inside the toolkit's: network events are recorded
/// and raised at the next turn of the event loop, so a handler may close, reopen or destroy its socket.
class QtSocket : public SocketPeer {
 public:
  explicit QtSocket(Winsock& owner) : owner_(owner) {}
  ~QtSocket() override;

  SocketState state() const override { return state_; }
  void connect(const std::string& host, int port) override;
  void close() override;
  void send(std::string_view data) override;
  std::string take() override;

 private:
  struct Connection;

  static void readAhead(QTcpSocket& wire);
  void queueEvent();
  void raiseNextEvent();
  void fail();
  void drop();

  Winsock& owner_;
  SocketState state_ = sckClosed;
  std::shared_ptr<Connection> connection_;
};

}  // namespace kelvora
