#include "platform/sockets/streamSocket.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "platform/sockets/hostAddresses.h"
#include "platform/sockets/networkSignal.h"
#include "platform/sockets/wire.h"
#include "platform/windowing/faultReport.h"
#include "platform/windowing/handlerCall.h"

namespace kelvora {

/// One connection from start to end.
struct StreamSocket::Connection {
  std::shared_ptr<HostAddresses> addresses;
  Wire wire;
  std::string received;
  std::string unsent;
  bool isConnected = false;  ///< it was established
  bool isToldOf = false;     ///< the game knows that
  bool hasNews = false;      ///< data has arrived since the last data event
  bool isClosed = false;     ///< the peer closed it
  bool isBroken = false;     ///< it failed
};

namespace {

std::vector<StreamSocket*> sockets;

void runEvent(const std::function<void()>& event) {
  // A handler may open a box, whose event loop must find what this turn has not served yet.
  signalNetwork();
  if (event) runHandler([handler = event] { handler(); });
}

}  // namespace

StreamSocket::StreamSocket(Winsock& owner) : owner_(owner) { sockets.push_back(this); }

StreamSocket::~StreamSocket() {
  drop();
  std::erase(sockets, this);
}

void StreamSocket::connect(const std::string& host, int port) {
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

void StreamSocket::startNextAddress() {
  for (;;) {
    const std::optional<HostAddress> address = connection_->addresses->next();
    if (address && connection_->wire.connect(*address)) return;
    if (!address) {
      connection_->isBroken = true;
      return;
    }
  }
}

void StreamSocket::close() {
  drop();
  state_ = sckClosed;
}

void StreamSocket::send(std::string_view data) {
  if (!connection_ || connection_->isClosed) return;
  if (std::ssize(connection_->unsent) + std::ssize(data) > writeBufferLimit) return fail();
  connection_->unsent += data;
  flush();
}

void StreamSocket::flush() {
  std::string& unsent = connection_->unsent;
  while (!unsent.empty()) {
    const std::size_t count = connection_->wire.send(unsent);
    if (count == 0) return;
    unsent.erase(0, count);
  }
}

std::string StreamSocket::take() {
  if (!connection_) return {};
  std::string portion;
  portion.swap(connection_->received);
  // There may be more on the wire than fitted.
  if (std::ssize(portion) >= readBufferSize) signalNetwork();
  return portion;
}

/// Records what has happened on the wire.
void StreamSocket::note() {
  Connection& connection = *connection_;
  if (!connection.wire.isOpen() || connection.isBroken) return;
  const Wire::Step step = connection.wire.connecting();
  if (step == Wire::Step::Broken) return startNextAddress();
  if (step == Wire::Step::NotYet) return;
  connection.isConnected = true;
  flush();
  receive();
}

/// Reads what has arrived, up to the buffer's size, because the game loses a message that spans two events.
void StreamSocket::receive() {
  Connection& connection = *connection_;
  std::array<char, 16384> portion;
  while (std::ssize(connection.received) < readBufferSize) {
    const std::size_t room = static_cast<std::size_t>(readBufferSize) - connection.received.size();
    const auto [step, count] = connection.wire.receive(std::span(portion).first(std::min(room, portion.size())));
    if (step == Wire::Step::NotYet) return;
    if (step == Wire::Step::Broken) {
      connection.isBroken = true;
      return;
    }
    if (step == Wire::Step::Closed) {
      connection.isClosed = true;
      // Ends this side, too. The game may keep the socket for long.
      connection.wire.close();
      return;
    }
    connection.received.append(portion.data(), count);
    connection.hasNews = true;
  }
}

bool StreamSocket::serve() {
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
  return true;
}

void StreamSocket::fail() {
  drop();
  state_ = sckError;
}

void StreamSocket::drop() {
  if (!connection_) return;
  // The peer learns of it at once, although a handler of this connection may still be running.
  connection_->wire.close();
  connection_.reset();
}

bool serveSockets() {
  clearNetworkSignal();
  bool wasEvent = false;
  // By index, because a handler may create or destroy sockets.
  for (std::size_t i = 0; i < sockets.size(); ++i) wasEvent = sockets[i]->serve() || wasEvent;
  return wasEvent;
}

}  // namespace kelvora
