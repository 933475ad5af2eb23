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

/// A socket in memory. The game's side is SocketPeer; the other members are the far end, played by whoever holds the
/// backend. What the far end does is queued and happens inside the next DoEvents; what was queued before the game
/// closed the socket does not happen at all.
class HeadlessSocket : public SocketPeer {
 public:
  HeadlessSocket(std::shared_ptr<HeadlessScreen> screen, Winsock& socket);
  ~HeadlessSocket() override;

  int state() const override { return state_; }
  void connect(const std::string& host, int port) override;
  void close() override;
  void send(std::string_view data) override;
  std::string take() override;

  /// Attempts to connect, as (host, port).
  std::vector<std::pair<std::string, int>> connects;
  /// How often the game closed the socket while it was not closed.
  int closes = 0;
  /// All bytes the game sent, and the same by calls of SendData.
  std::string sent;
  std::vector<std::string> sendings;

  /// The connection stands: state 7 and the event Connect.
  void acceptConnection();
  /// The attempt fails: state 9 and no event.
  void refuse();
  /// One event DataArrival; GetData then gives the bytes in portions of at most `portion` (0 for all at once).
  void deliver(std::string bytes, std::size_t portion = 0);
  /// One event DataArrival for each piece, as if the network had split the bytes there.
  void deliverInReads(const std::vector<std::string>& pieces);
  /// The far end hangs up: state 8 and the event Close.
  void closeByServer();
  /// Puts the socket into a state at once, with no event.
  void setState(int state) { state_ = state; }

 private:
  void post(std::function<void()> happening);

  std::shared_ptr<HeadlessScreen> screen_;
  Winsock& socket_;
  int state_ = sckClosed;
  std::deque<std::string> arrived_;
  std::shared_ptr<int> connection_;  // a new one for each connection; what is queued for an old one is void
};

}  // namespace kelvora
