#include "platform/win32/win32Socket.h"

#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "platform/desktop/handlerCall.h"
#include "platform/win32/hostAddresses.h"
#include "platform/win32/messagePump.h"
#include "platform/win32/win32.h"

namespace kelvora {

/// One connection from start to end.
struct Win32Socket::Connection {
  std::shared_ptr<HostAddresses> addresses;
  SOCKET wire = INVALID_SOCKET;
  std::string received;
  std::string unsent;
  bool isConnected = false;  ///< it was established
  bool isToldOf = false;     ///< the game knows that
  bool hasNews = false;      ///< data has arrived since the last data event
  bool isClosed = false;     ///< the peer closed it
  bool isBroken = false;     ///< it failed
  bool isDropped = false;    ///< the game has dropped it

  ~Connection() { closeWire(); }
  void closeWire() {
    if (wire != INVALID_SOCKET) closesocket(wire);
    wire = INVALID_SOCKET;
  }
};

namespace {

std::vector<Win32Socket*> sockets;

void runEvent(const std::function<void()>& event) {
  if (event) runHandler([handler = event] { handler(); });
}

}  // namespace

Win32Socket::Win32Socket(Winsock& owner) : owner_(owner) { sockets.push_back(this); }

Win32Socket::~Win32Socket() {
  std::erase(sockets, this);
  drop();
}

void Win32Socket::connect(const std::string& host, int port) {
  drop();
  constexpr int maxPort = 65535;
  if (port < 1 || port > maxPort) {
    state_ = sckError;
    return;
  }
  connection_ = std::make_shared<Connection>();
  connection_->addresses = HostAddresses::lookUp(host, port);
  state_ = sckResolvingHost;
}

void Win32Socket::startNextAddress() {
  Connection& connection = *connection_;
  connection.closeWire();
  const std::optional<HostAddress> address = connection.addresses->next();
  if (!address) {
    connection.isBroken = true;
    return;
  }
  connection.wire = ::socket(address->family, SOCK_STREAM, IPPROTO_TCP);
  if (connection.wire == INVALID_SOCKET) return startNextAddress();
  const BOOL isImmediate = TRUE;
  setsockopt(connection.wire, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&isImmediate),
             sizeof isImmediate);
  WSAEventSelect(connection.wire, networkSignal(), FD_CONNECT | FD_READ | FD_WRITE | FD_CLOSE);
  const int result = ::connect(connection.wire, reinterpret_cast<const sockaddr*>(address->bytes.data()),
                               static_cast<int>(address->size));
  if (result != 0 && WSAGetLastError() != WSAEWOULDBLOCK) startNextAddress();
}

void Win32Socket::close() {
  drop();
  state_ = sckClosed;
}

void Win32Socket::send(std::string_view data) {
  if (!connection_ || !connection_->isConnected || connection_->isClosed) return;
  if (std::ssize(connection_->unsent) + std::ssize(data) > writeBufferLimit) return fail();
  connection_->unsent += data;
  flush();
}

void Win32Socket::flush() {
  Connection& connection = *connection_;
  std::size_t sent = 0;
  while (sent < connection.unsent.size()) {
    const int count =
        ::send(connection.wire, connection.unsent.data() + sent, static_cast<int>(connection.unsent.size() - sent), 0);
    if (count <= 0) break;
    sent += static_cast<std::size_t>(count);
  }
  connection.unsent.erase(0, sent);
}

std::string Win32Socket::take() {
  if (!connection_) return {};
  std::string portion;
  portion.swap(connection_->received);
  // There may be more on the wire than fitted.
  if (std::ssize(portion) >= readBufferSize) SetEvent(networkSignal());
  return portion;
}

/// Records what has happened on the wire.
void Win32Socket::note() {
  Connection& connection = *connection_;
  if (connection.wire == INVALID_SOCKET) return;
  WSANETWORKEVENTS events{};
  if (WSAEnumNetworkEvents(connection.wire, nullptr, &events) != 0) return;
  if ((events.lNetworkEvents & FD_CONNECT) != 0) {
    if (events.iErrorCode[FD_CONNECT_BIT] != 0) return startNextAddress();
    connection.isConnected = true;
  }
  if (!connection.isConnected) return;
  if ((events.lNetworkEvents & FD_WRITE) != 0) flush();
  receive();
}

/// Reads what has arrived, up to the buffer's size, because the game loses a message that spans two events.
void Win32Socket::receive() {
  Connection& connection = *connection_;
  std::array<char, 16384> portion;
  while (!connection.isClosed && !connection.isBroken && std::ssize(connection.received) < readBufferSize) {
    const int count = recv(connection.wire, portion.data(), static_cast<int>(portion.size()), 0);
    if (count > 0) {
      connection.received.append(portion.data(), static_cast<std::size_t>(count));
      connection.hasNews = true;
    } else if (count == 0) {
      // Closes this end, too, as other systems do. The game may keep the socket for long.
      connection.isClosed = true;
      connection.closeWire();
    } else {
      connection.isBroken = WSAGetLastError() != WSAEWOULDBLOCK;
      return;
    }
  }
}

bool Win32Socket::serve() {
  const std::shared_ptr<Connection> connection = connection_;
  if (!connection) return false;
  if (state_ == sckResolvingHost) {
    if (!connection->addresses->areKnown()) return false;
    state_ = sckConnecting;
    startNextAddress();
  }
  note();
  if (connection->isConnected && !connection->isToldOf) {
    connection->isToldOf = true;
    state_ = sckConnected;
    runEvent(owner_.onConnect);
  } else if (connection->hasNews) {
    connection->hasNews = false;
    noteForReport("bytes that came from " + owner_.RemoteHost + ":" + std::to_string(owner_.RemotePort));
    runEvent(owner_.onDataArrival);
  } else if (connection->isBroken) {
    fail();
    return false;
  } else if (connection->isClosed && state_ != sckClosing) {
    state_ = sckClosing;
    runEvent(owner_.onClose);
  } else {
    return false;
  }
  return !connection->isDropped;
}

void Win32Socket::fail() {
  drop();
  state_ = sckError;
}

void Win32Socket::drop() {
  if (!connection_) return;
  connection_->isDropped = true;
  // The peer learns of it at once, although a handler of this connection may still be running.
  connection_->closeWire();
  connection_.reset();
}

bool serveSockets() {
  bool isMore = false;
  // By index, because a handler may create or destroy sockets.
  for (std::size_t i = 0; i < sockets.size(); ++i) isMore = sockets[i]->serve() || isMore;
  return isMore;
}

}  // namespace kelvora
