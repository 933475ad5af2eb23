#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/winsock.h"

namespace kelvora {

struct HeadlessScreen;

/// An in-memory socket. SocketPeer is the game's side. The other members are the far end, controlled by the backend's
/// owner. Actions of the far end are queued and happen in the next DoEvents. When the game closes the socket, its
/// queued actions are dropped.
class HeadlessSocket : public SocketPeer {
 public:
  HeadlessSocket(std::shared_ptr<HeadlessScreen> screen, Winsock& socket);
  ~HeadlessSocket() override;

  SocketState state() const override { return state_; }
  void connect(const std::string& host, int port) override;
  void close() override;
  void send(std::string_view data) override;
  std::string take() override;

  /// Attempted connections: (host, port).
  std::vector<std::pair<std::string, int>> connects;
  /// Number of times the game closed an open socket.
  int closes = 0;
  /// All bytes the game sent, and the bytes of each call of SendData.
  std::string sent;
  std::vector<std::string> sends;

  /// Accepts the connection: state 7 and the event Connect.
  void acceptConnection();
  /// Refuses the connection: state 9 and no event.
  void refuse();
  /// Raises one DataArrival. GetData then returns at most `portion` bytes per call (0 for all at once).
  void deliver(std::string bytes, std::size_t portion = 0);
  /// Raises one DataArrival per piece, as if the network had split the bytes there.
  void deliverInReads(const std::vector<std::string>& pieces);
  /// Closes the connection from the far end: state 8 and the event Close.
  void closeByServer();
  /// Sets the state at once, without an event.
  void setState(SocketState state) { state_ = state; }

 private:
  void post(std::function<void()> action);

  std::shared_ptr<HeadlessScreen> screen_;
  Winsock& socket_;
  SocketState state_ = sckClosed;
  std::deque<std::string> arrived_;
  std::shared_ptr<int> connection_;  // new for each connection; actions queued for an old one are dropped
};

}  // namespace kelvora
