#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>

#include "platform/win32/win32Backend.h"
#include "platform/windowing/handlerCall.h"
#include "tests/platform/sockets/loopbackServer.h"

namespace kelvora {
namespace {

class Win32Sockets : public ::testing::Test {
 protected:
  Win32Sockets() {
    installBackend(&desktop_);
    socket_ = std::make_unique<Winsock>();
    socket_->RemoteHost = "127.0.0.1";
    socket_->RemotePort = server_.port;
  }
  ~Win32Sockets() override {
    socket_.reset();
    installBackend(nullptr);
  }

  Win32Backend desktop_{""};
  LoopbackServer server_;
  std::unique_ptr<Winsock> socket_;
};

TEST_F(Win32Sockets, ASlowHandlerDoesNotHideTheCloseBehindIt) {
  std::string received;
  socket_->onDataArrival = [&] {
    received += socket_->GetData();
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(5 * maxServiceTime);
    while (std::chrono::steady_clock::now() < end) {
    }
  };
  socket_->Connect();
  while (socket_->State() != sckConnected) backend().doEvents(true);
  server_.accept();
  server_.send("last words");
  server_.hangUp();
  while (socket_->State() != sckClosing) backend().doEvents(true);
  EXPECT_EQ(received, "last words");
}

TEST_F(Win32Sockets, RaiseOneEventPerDoEvents) {
  // So that the handler of a connection has returned before the game hears that it was lost.
  int now = 0;
  int most = 0;
  const auto count = [&] { most = std::max(most, ++now); };
  socket_->onConnect = count;
  socket_->onDataArrival = [&] {
    socket_->GetData();
    count();
  };
  socket_->onClose = count;
  socket_->Connect();
  const auto turn = [&] {
    now = 0;
    backend().doEvents(true);
  };
  turn();  // begins to connect
  server_.accept();
  server_.send("denied");
  server_.hangUp();
  while (socket_->State() != sckClosing) turn();
  EXPECT_EQ(most, 1);
}

}  // namespace
}  // namespace kelvora
