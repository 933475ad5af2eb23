// Hostile clients that speak HTTP and WebSocket on real loopback sockets. The others play on.

#include <string>

#include "generated/version.h"
#include "server/net/pacedSocket.h"
#include "tests/server/net/hostile.h"
#include "tests/server/net/webSocketClient.h"

namespace kelvora::server {
namespace {

using HostileWeb = UnderAttack;
using Web = WebSocketClient;

std::string repeated(const std::string& bytes, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += bytes;
  return all;
}

const std::string page = "GET / HTTP/1.1\r\nHost: h\r\n\r\n";

TEST_F(HostileWeb, FloodsOfRequestsOverKeptConnectionsAreThrottled) {
  Flood flood(port, 60, page, repeated(page, 100), true);
  expectPlay([&](int) { flood.pour(); });
  EXPECT_GT(flood.poured(), 64U << 10) << "there was a flood";
}

TEST_F(HostileWeb, FloodsOfTinyWebSocketFramesAreThrottled) {
  const std::string chat = frameOf(wire::msgChat, {});
  Flood flood(port, 60, Web::handshake(), repeated(Web::frame(Web::binary, chat), 1'000));
  const auto start = std::chrono::steady_clock::now();
  expectPlay([&](int) { flood.pour(); });
  const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
  // Each is allowed half a second's worth at once and then the rate. The rest waits in the buffers of both sides.
  EXPECT_LT(static_cast<double>(flood.poured()),
            60 * (PacedSocket::bytesPerSecond * (time.count() + 0.5) + (256 << 10)));
}

TEST_F(HostileWeb, FloodsOfEmptyFragmentsAndPongsEnd) {
  Flood fragments(port, 20, Web::handshake() + Web::frame(Web::binary, "\x80", false),
                  repeated(Web::frame(Web::continuation, "", false), 1'000));
  Flood pongs(port, 20, Web::handshake(), repeated(Web::frame(Web::pong, ""), 1'000));
  expectPlay([&](int) {
    fragments.pour();
    pongs.pour();
  });
}

TEST_F(HostileWeb, AThousandIdleConnectionsDoNotDelayTheGame) {
  std::vector<std::unique_ptr<TcpClient>> idle;
  const std::size_t growth = expectPlay([&](int i) {
    while (idle.size() < static_cast<std::size_t>(25 * (i + 1))) {
      idle.push_back(std::make_unique<TcpClient>(port, static_cast<std::uint32_t>(2 + idle.size() % 190)));
      idle.back()->push(page);
    }
  });
  EXPECT_EQ(idle.size(), 1'000U);
  EXPECT_LT(growth, allowedBytes(GameServer::maxConnections));
}

TEST_F(HostileWeb, SlowRequestsAndEndlessBodiesEnd) {
  Flood slow(port, 30, "GET / HTTP/1.1\r\n", "a");
  Flood bodies(port, 30, "POST / HTTP/1.1\r\nHost: h\r\nTransfer-Encoding: chunked\r\n\r\n",
               repeated("1\r\nx\r\n", 100));
  Flood heads(port, 30, "GET / HTTP/1.1\r\n", repeated("a: b\r\n", 1'000));
  const std::size_t growth = expectPlay([&](int i) {
    if (i % 10 == 0) slow.pour();
    bodies.pour();
    heads.pour();
  });
  EXPECT_LT(growth, allowedBytes(90));
}

TEST_F(HostileWeb, HundredsOfListsAndHandshakes) {
  const std::string requests[] = {
      "GET /games/kelvora/gethosts.php?version=" KELVORA_VERSION " HTTP/1.0\r\n\r\n",
      Web::handshake(),
      Web::handshake() + Web::frame(Web::closing, "\x03\xE8"),
      Web::handshake("/play", "Origin: http://evil.example\r\n"),
      "POST /games/kelvora/publish?version=" KELVORA_VERSION
      "&address=a&port=1&password=0&notes=n&players=1&max=6 HTTP/1.0\r\n\r\n",
  };
  std::vector<std::unique_ptr<TcpClient>> crowd;
  int count = 0;
  expectPlay([&](int i) {
    while (count < 25 * (i + 1)) {
      crowd.push_back(std::make_unique<TcpClient>(port, static_cast<std::uint32_t>(2 + count % 190)));
      crowd.back()->push(requests[static_cast<std::size_t>(count++) % std::size(requests)]);
    }
    if (crowd.size() > 80) crowd.erase(crowd.begin(), crowd.begin() + 40);
  });
  EXPECT_EQ(count, 25 * steps);
}

}  // namespace
}  // namespace kelvora::server
