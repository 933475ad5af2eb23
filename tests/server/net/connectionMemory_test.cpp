// The memory of connections, counted in bytes, against the operator's table.

#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <fstream>
#include <iostream>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "generated/sourceFolder.h"
#include "protocol/messages.h"
#include "server/net/connection.h"
#include "server/net/gameServer.h"
#include "tests/server/net/heapBytes.h"
#include "tests/server/net/webSocketClient.h"
#include "tests/support/wireMessage.h"

namespace kelvora::server {
namespace {

/// The number in the guide's row for the memory of a connection: KiB when nothing is unread, else MiB.
double documented(bool isUnread) {
  std::ifstream file(KELVORA_SOURCE_DIR "/docs/server.md");
  std::ostringstream text;
  text << file.rdbuf();
  const std::string guide = text.str();
  std::smatch row;
  const std::regex format("\\| memory for a connection \\| (\\d+) KiB, or (\\d\\.\\d) MiB with unread bytes");
  if (!std::regex_search(guide, row, format)) throw std::runtime_error("no such row");
  return std::stod(row[isUnread ? 2 : 1]);
}

/// Connections of one kind, and their clients in the same process.
class Crowd {
 public:
  static constexpr std::size_t size = 8;

  /// Each client says the same, piece by piece. The connections' handlers keep nothing.
  explicit Crowd(const std::vector<std::string>& pieces) {
    for (std::size_t i = 0; i < size; ++i) {
      clients_.push_back(std::make_unique<TcpClient>(door_.local_endpoint().port()));
      clients_.back()->keepLittleUnread();
    }
    connections_.reserve(size);
    const std::size_t before = heapBytes();
    for (std::size_t i = 0; i < size; ++i) {
      connections_.push_back(std::make_shared<Connection>(
          door_.accept(), ClientId{1},
          Connection::Handlers{.onForwarded = {},
                               .onGame = [](ClientId) {},
                               .onFrame = [](ClientId, std::string_view) {},
                               .onRequest =
                                   [](ClientId, const HttpRequest& request) {
                                     return request.isUpgrade
                                                ? HttpAnswer{.status = 101}
                                                : HttpAnswer{.body = std::string(100, 'x'), .mayKeepAlive = true};
                                   },
                               .onClosed = [](ClientId, const std::string&) {}}));
      connections_.back()->start();
    }
    settle();
    for (const std::string& piece : pieces) {
      for (const auto& client : clients_) client->write(piece);
      settle();
    }
    before_ = before;
  }
  ~Crowd() {
    for (const auto& connection : connections_) connection->close("over");
    settle();
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

  double bytesEach() const { return static_cast<double>(heapBytes() - before_) / size; }
  /// Sends everybody as much as may be unread.
  void fill(const std::string& frame) {
    for (const auto& connection : connections_) {
      for (std::size_t sent = 0; sent + frame.size() <= Connection::maxQueue; sent += frame.size()) {
        connection->send(frame);
      }
    }
  }
  void settle() {
    context_.restart();
    while (context_.poll() > 0) {
    }
  }

 private:
  asio::io_context context_;
  Acceptor door_{context_, {asio::ip::address_v4::loopback(), 0}};
  std::vector<std::unique_ptr<TcpClient>> clients_;
  std::vector<std::shared_ptr<Connection>> connections_;
  std::size_t before_ = 0;
};

const std::string requestHead = "GET / HTTP/1.1\r\nHost: h\r\n";

std::string inWebSocket(const std::string& bytes) { return WebSocketClient::frame(WebSocketClient::binary, bytes); }

TEST(ConnectionMemory, IsWithinTheTableInEveryState) {
  const std::string handshake = WebSocketClient::handshake();
  const std::string frame = "\x80\x90" + std::string(4'094, 'x');
  const std::string head = requestHead + "A: " + std::string(4'096 - requestHead.size() - 3, 'a');
  const struct {
    const char* name;
    std::vector<std::string> pieces;
  } states[] = {
      {"silent", {}},
      {"a frame begun", {"\x80\x90"}},
      {"a frame almost whole", {frame}},
      {"a request begun", {"G"}},
      {"a request almost too long", {head}},
      {"a request too long", {head, "a"}},
      {"an answered request", {requestHead + "\r\n"}},
      {"a WebSocket", {handshake}},
      {"a frame begun in a WebSocket", {handshake, inWebSocket("\x80\x90")}},
      {"a frame almost whole in a WebSocket", {handshake, inWebSocket(frame)}},
      {"a request almost too long in a WebSocket", {handshake, inWebSocket(head)}},
      {"a fragment begun in a WebSocket", {handshake, inWebSocket(frame).substr(0, 3'000)}},
      {"a control frame begun in a WebSocket",
       {handshake, WebSocketClient::frame(WebSocketClient::ping, std::string(125, 'p')).substr(0, 100)}},
  };
  for (const auto& [name, pieces] : states) {
    const Crowd crowd(pieces);
    const double kibibytes = crowd.bytesEach() / 1024;
    EXPECT_LE(kibibytes, documented(false)) << name;
    std::cout << "[  memory  ] " << kibibytes << " KiB: " << name << "\n";
  }
}

TEST(ConnectionMemory, IsWithinTheTableWithUnreadBytes) {
  const std::string begin = frameOf(wire::msgPing, {});
  for (const auto& pieces : {std::vector<std::string>{begin}, {WebSocketClient::handshake(), inWebSocket(begin)}}) {
    for (const std::size_t size : {100U, 1'000U, 4'000U}) {
      Crowd crowd(pieces);
      crowd.fill(std::string(size, 'x'));
      const double mebibytes = crowd.bytesEach() / (1 << 20);
      EXPECT_GE(mebibytes, 0.2) << "they are held";
      EXPECT_LE(mebibytes, documented(true)) << size;
      std::cout << "[  memory  ] " << mebibytes << " MiB unread, in frames of " << size << "\n";
    }
  }
}

/// The bytes that a server holds for a player who flies alone.
double bytesOfAPlayer(bool isOverWebSocket) {
  Options options;
  options.port = 0;
  options.rules.speedFactor = 0;
  bool hasJoined = false;
  asio::io_context context;
  GameServer server(context, options,
                    [&](const std::string& line) { hasJoined = hasJoined || line.starts_with("Ann joined"); });
  TcpClient client(server.port());
  const std::size_t before = heapBytes();
  const auto say = [&](const std::string& bytes) {
    client.write(bytes);
    client.waitUntilDelivered();
    while (context.poll_one() > 0) client.drain();
  };
  std::string flight;
  for (int x = 50'000; x < 50'050; ++x) flight += frameOf(wire::msgPositionReport, {std::to_string(x), "50000"});
  const std::string login = frameOf(wire::msgLogin, {"Ann", "", "0", KELVORA_VERSION});
  if (isOverWebSocket) say(WebSocketClient::handshake());
  say(isOverWebSocket ? inWebSocket(login) : login);
  say(isOverWebSocket ? inWebSocket(flight) : flight);
  EXPECT_TRUE(hasJoined);
  const auto held = static_cast<double>(heapBytes() - before);
  server.stop();
  server.stop();
  context.run();
  return held;
}

TEST(ConnectionMemory, APlayerOverWebSocketTakesAtMostTwiceAsMuchAsOneOverTcp) {
  const double plain = bytesOfAPlayer(false);
  const double overWebSocket = bytesOfAPlayer(true);
  EXPECT_LE(overWebSocket, 2 * plain);
  std::cout << "[  memory  ] a player: " << plain / 1024 << " KiB over TCP, " << overWebSocket / 1024
            << " KiB over WebSocket\n";
}

}  // namespace
}  // namespace kelvora::server
