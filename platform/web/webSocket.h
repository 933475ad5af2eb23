#pragma once

#include <string>

#include "platform/web/pageEvents.h"
#include "platform/winsock.h"

namespace kelvora {

/// A socket of the game as a WebSocket of the page.
class WebSocketPeer : public SocketPeer, public PageObject {
 public:
  explicit WebSocketPeer(Winsock& owner) : owner_(owner) {}
  ~WebSocketPeer() override;

  SocketState state() const override { return state_; }
  void connect(const std::string& host, int port) override;
  void close() override;
  void send(std::string_view data) override;
  std::string take() override;
  void take(const PageEvent& event) override;

 private:
  Winsock& owner_;
  SocketState state_ = sckClosed;
  std::string arrived_;
};

}  // namespace kelvora
