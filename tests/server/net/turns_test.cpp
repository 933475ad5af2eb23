// A server whose event loop the test runs by hand, one handler at a time. Counting handlers replaces measuring time.

#include <functional>
#include <utility>

#include "server/net/gameServer.h"
#include "tests/server/net/hostile.h"
#include "tests/server/net/webSocketClient.h"

namespace kelvora::server {
namespace {

class ByTurns : public testing::Test {
 protected:
  ~ByTurns() override {
    server.stop();
    server.stop();
    context.poll();
  }

  /// Serves until the condition holds, for a minute at most.
  void serveUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
      ASSERT_LT(std::chrono::steady_clock::now(), end);
      context.run_one_for(std::chrono::milliseconds(10));
    }
  }
  void logIn(Client& client, const std::string& name) {
    client.login(name);
    serveUntil([&] { return client.hasNews(); });
    ASSERT_NE(client.readUntil(wire::msgLoginAccepted), "nothing");
  }

  static Options anyPort() {
    Options options;
    options.port = 0;
    options.rules.speedFactor = 0;
    return options;
  }

  int joined = 0;  // connections that have sent game data
  asio::io_context context;
  GameServer server{context, anyPort(),
                    [this](const std::string& line) { joined += line.find("connected from") != std::string::npos; }};
  Client ann{server.port(), 200};
};

TEST_F(ByTurns, FloodFromSixtyClientsDelaysAReportByAFewReadsOfEach) {
  constexpr int count = 60;
  Client bob(server.port(), 201);
  logIn(ann, "Ann");
  logIn(bob, "Bob");
  std::string bytes;
  for (int i = 0; i < 10'000; ++i) bytes += frameOf(wire::msgChat, {});
  Flood flood(server.port(), count, frameOf(wire::msgChat, {}), bytes);
  serveUntil([&] { return joined == 2 + count; });
  flood.pour();
  ann.say(wire::msgPositionReport, {"50000", "50000"});
  ann.waitUntilDelivered();
  for (int turn = 0; turn < 3 * count; ++turn) context.poll_one();
  EXPECT_TRUE(bob.readUntil(wire::msgPosition)
                  .ends_with("\x82"
                             "50000\x82"
                             "50000"))
      << "without another turn";
}

TEST_F(ByTurns, AReportIsRelayedInTheTurnThatReadsIt) {
  Client bob(server.port(), 201);
  WebSocketClient web(server.port(), 202);
  logIn(ann, "Ann");
  logIn(bob, "Bob");
  web.write(WebSocketClient::handshake());
  serveUntil([&] { return web.hasNews(); });
  web.send(login("Web"));
  serveUntil([&] { return joined == 3; });
  const std::string report = frameOf(wire::msgPositionReport, {"50000", "50000"});
  const std::pair<TcpClient&, std::string> reports[] = {{ann, report},
                                                        {web, WebSocketClient::frame(WebSocketClient::binary, report)}};
  for (const auto& [client, bytes] : reports) {
    // A tick may come in between, but not every time.
    bool isAtOnce = false;
    for (int i = 0; i < 20 && !isAtOnce; ++i) {
      context.poll();
      bob.drain();
      client.write(bytes);
      client.waitUntilDelivered();
      int turns = -1;
      serveUntil([&] {
        ++turns;
        return bob.hasNews();
      });
      isAtOnce = turns == 1 && static_cast<unsigned char>(bob.read()[0]) == wire::msgPosition;
    }
    EXPECT_TRUE(isAtOnce);
  }
}

TEST_F(ByTurns, TheSecondStopWaitsForNobody) {
  logIn(ann, "Ann");
  bool isDone = false;
  server.stop([&] { isDone = true; });
  context.poll();
  EXPECT_FALSE(isDone) << "Ann has two seconds to leave";
  server.stop();
  context.poll();
  EXPECT_TRUE(isDone);
}

}  // namespace
}  // namespace kelvora::server
