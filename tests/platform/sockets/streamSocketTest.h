#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/backend.h"
#include "platform/headless/headlessBackend.h"
#include "platform/sockets/streamSocket.h"
#include "platform/winsock.h"
#include "tests/platform/sockets/loopbackServer.h"

namespace kelvora {

/// A backend without a screen, but with real sockets.
class NetworkBackend : public HeadlessBackend {
 public:
  std::unique_ptr<SocketPeer> createSocket(Winsock& socket) override { return std::make_unique<StreamSocket>(socket); }
};

/// A server on the loopback interface, and a socket of the game that records its events.
class StreamSockets : public ::testing::Test {
 protected:
  StreamSockets() {
    installBackend(&backend_);
    socket_.emplace();
    socket_->RemoteHost = "127.0.0.1";
    socket_->RemotePort = server_.port;
    socket_->onConnect = [this] { events_.push_back("Connect " + std::to_string(socket_->State())); };
    socket_->onClose = [this] { events_.push_back("Close " + std::to_string(socket_->State())); };
    socket_->onDataArrival = [this] {
      events_.push_back("Data " + std::to_string(socket_->State()));
      const std::string portion = socket_->GetData();
      maxPortion_ = std::max(maxPortion_, portion.size());
      received_ += portion;
    };
  }
  ~StreamSockets() override {
    socket_.reset();
    installBackend(nullptr);
  }

  bool reaches(SocketState state) {
    return serveSocketsUntil([this, state] { return socket_->State() == state; });
  }

  /// Connects both sides.
  void connect() {
    socket_->Connect();
    ASSERT_TRUE(reaches(sckConnected));
    server_.accept();
  }

  /// Sends any number of bytes, and raises events meanwhile.
  void deliver(std::string_view bytes) {
    while (!bytes.empty()) {
      bytes.remove_prefix(server_.push(bytes));
      serveSockets();
    }
  }

  /// Raises the events that are due.
  void serveAll() {
    while (serveSockets()) {
    }
  }

  using Events = std::vector<std::string>;

  NetworkBackend backend_;
  LoopbackServer server_;
  std::optional<Winsock> socket_;
  Events events_;
  std::string received_;
  std::size_t maxPortion_ = 0;
};

}  // namespace kelvora
