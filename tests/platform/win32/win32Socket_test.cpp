#include "platform/win32/win32Socket.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "platform/win32/messagePump.h"
#include "platform/win32/win32.h"
#include "platform/win32/win32Backend.h"

namespace kelvora {
namespace {

/// A server's end on the loopback interface.
class Listener {
 public:
  Listener() : socket_(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    listen(socket_, 1);
    int size = sizeof address;
    getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size);
    port = ntohs(address.sin_port);
  }
  ~Listener() {
    hangUp();
    closesocket(socket_);
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  void accept() { line_ = ::accept(socket_, nullptr, nullptr); }
  void send(const std::string& bytes) const { ::send(line_, bytes.data(), static_cast<int>(bytes.size()), 0); }
  std::string receive(std::size_t count) const {
    std::string bytes(count, '\0');
    const int got = recv(line_, bytes.data(), static_cast<int>(count), MSG_WAITALL);
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
  }
  void endSending() const { shutdown(line_, SD_SEND); }
  bool isClosedByPeer() const {
    const DWORD patience = 60'000;
    setsockopt(line_, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&patience), sizeof patience);
    char byte = 0;
    return recv(line_, &byte, 1, 0) == 0;
  }
  void hangUp() {
    if (line_ != INVALID_SOCKET) closesocket(line_);
    line_ = INVALID_SOCKET;
  }

  int port = 0;

 private:
  SOCKET socket_;
  SOCKET line_ = INVALID_SOCKET;
};

class Sockets : public ::testing::Test {
 protected:
  Sockets() {
    static Win32Backend desktop("");
    installBackend(&desktop);
    socket = std::make_unique<Winsock>();
    socket->onConnect = [this] { events.emplace_back("connect"); };
    socket->onDataArrival = [this] {
      events.emplace_back("data");
      received += socket->GetData();
    };
    socket->onClose = [this] { events.emplace_back("close"); };
  }

  void connect(int port) const {
    socket->RemoteHost = "127.0.0.1";
    socket->RemotePort = port;
    socket->Connect();
  }

  template <class Condition>
  void serveUntil(const Condition& condition) {
    constexpr DWORD patience = 60'000;
    while (!condition()) {
      if (serveSockets()) continue;
      if (condition()) return;
      ASSERT_EQ(WaitForSingleObject(networkSignal(), patience), WAIT_OBJECT_0) << "state " << socket->State();
    }
  }

  std::unique_ptr<Winsock> socket;
  std::vector<std::string> events;
  std::string received;
};

using Events = std::vector<std::string>;

TEST_F(Sockets, AConnectionGoesThroughItsStatesAndBytesGoBothWays) {
  Listener server;
  connect(server.port);
  EXPECT_EQ(socket->State(), sckResolvingHost);
  serveUntil([&] { return socket->State() == sckConnected; });
  server.accept();
  socket->SendData("to the server");
  EXPECT_EQ(server.receive(13), "to the server");
  server.send("to the client");
  serveUntil([&] { return received == "to the client"; });
  server.hangUp();
  serveUntil([&] { return socket->State() == sckClosing; });
  EXPECT_EQ(events.front(), "connect");
  EXPECT_EQ(events.back(), "close");
}

TEST_F(Sockets, TheEndIsClosedOnceThePeerHasClosedItsOwn) {
  Listener server;
  connect(server.port);
  serveUntil([&] { return socket->State() == sckConnected; });
  server.accept();
  server.endSending();
  serveUntil([&] { return socket->State() == sckClosing; });
  EXPECT_TRUE(server.isClosedByPeer());
}

TEST_F(Sockets, DataBeforeTheCloseIsDeliveredFirst) {
  Listener server;
  connect(server.port);
  serveUntil([&] { return socket->State() == sckConnected; });
  server.accept();
  server.send("last words");
  server.hangUp();
  serveUntil([&] { return socket->State() == sckClosing; });
  EXPECT_EQ(received, "last words");
  EXPECT_EQ(events.back(), "close");
}

TEST_F(Sockets, AMegabyteArrivesWhole) {
  Listener server;
  connect(server.port);
  serveUntil([&] { return socket->State() == sckConnected; });
  server.accept();
  std::string sent;
  for (int i = 0; i < 64; ++i) {
    const std::string portion(16384, static_cast<char>('A' + i));
    server.send(portion);
    sent += portion;
    serveUntil([&] { return received.size() == sent.size(); });
  }
  EXPECT_EQ(received, sent);
}

TEST_F(Sockets, ARefusedConnectionIsAnErrorWithoutAnEvent) {
  int closedPort = 0;
  {
    const Listener server;
    closedPort = server.port;
  }
  connect(closedPort);
  serveUntil([&] { return socket->State() == sckError; });
  EXPECT_TRUE(events.empty());
}

TEST_F(Sockets, PortsOutOfRangeAreErrorsAtOnce) {
  for (const int port : {0, -1, 65536}) {
    connect(port);
    EXPECT_EQ(socket->State(), sckError);
    socket->Close();
  }
}

TEST_F(Sockets, ClosingRaisesNoEventAndTheSocketConnectsAgain) {
  Listener first;
  connect(first.port);
  serveUntil([&] { return socket->State() == sckConnected; });
  socket->Close();
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(events, Events{"connect"});
  Listener second;
  connect(second.port);
  serveUntil([&] { return socket->State() == sckConnected; });
  EXPECT_EQ(events, (Events{"connect", "connect"}));
}

TEST_F(Sockets, TheCloseBehindASlowHandlerIsNotForgotten) {
  Listener server;
  connect(server.port);
  serveUntil([&] { return socket->State() == sckConnected; });
  server.accept();
  socket->onDataArrival = [this] {
    received += socket->GetData();
    // Longer than events are served in one turn.
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(50);
    while (std::chrono::steady_clock::now() < end) {
    }
  };
  server.send("last words");
  server.hangUp();
  while (socket->State() != sckClosing) backend().doEvents(true);
  EXPECT_EQ(received, "last words");
}

TEST_F(Sockets, AHandlerMayDestroyItsSocket) {
  Listener server;
  connect(server.port);
  bool isDestroyed = false;
  // The handler's own state dies with the socket.
  socket->onConnect = [this, &isDestroyed] {
    isDestroyed = true;
    socket.reset();
  };
  serveUntil([&] { return isDestroyed; });
  EXPECT_EQ(socket, nullptr);
}

}  // namespace
}  // namespace kelvora
