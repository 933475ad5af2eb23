#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "platform/desktop/handlerCall.h"
#include "platform/win32/win32Backend.h"
#include "tests/platform/sockets/loopbackServer.h"

namespace kelvora {
namespace {

TEST(SlowHandler, DoesNotHideTheCloseBehindIt) {
  Win32Backend desktop("");
  installBackend(&desktop);
  LoopbackServer server;
  {
    Winsock socket;
    std::string received;
    socket.onDataArrival = [&] {
      received += socket.GetData();
      const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(5 * maxServiceTime);
      while (std::chrono::steady_clock::now() < end) {
      }
    };
    socket.RemoteHost = "127.0.0.1";
    socket.RemotePort = server.port;
    socket.Connect();
    while (socket.State() != sckConnected) backend().doEvents(true);
    server.accept();
    server.send("last words");
    server.hangUp();
    while (socket.State() != sckClosing) backend().doEvents(true);
    EXPECT_EQ(received, "last words");
  }
  installBackend(nullptr);
}

}  // namespace
}  // namespace kelvora
