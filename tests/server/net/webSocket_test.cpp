// The game over WebSocket on real loopback sockets.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

#include "generated/version.h"
#include "server/net/door.h"
#include "tests/server/net/runningServer.h"
#include "tests/server/net/tcpClient.h"
#include "tests/server/net/webSocketClient.h"

namespace kelvora::server {
namespace {

Options withoutSpeedLimit() {
  Options options;
  options.rules.speedFactor = 0;
  return options;
}

class WebSocketTest : public testing::Test {
 protected:
  RunningServer server{withoutSpeedLimit()};

  /// Expects that a WebSocket without a player is still served.
  static void expectToBeServed(WebSocketClient& client) {
    client.send("GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n");
    EXPECT_NE(client.readUntil("tvqver:").find("200 OK"), std::string::npos);
  }
  void expectOthersToPlay() const {
    Client other(server.port(), 9);
    other.login("Other");
    other.say(wire::msgChat, {"-1", "still here"});
    EXPECT_NE(other.readUntil(wire::msgChat), "nothing");
  }
};

TEST_F(WebSocketTest, AnswersTheHandshakeByTheStandard) {
  WebSocketClient client(server.port());
  ASSERT_TRUE(client.open("Sec-WebSocket-Extensions: permessage-deflate\r\n"));
  // The answer to this key is the example of RFC 6455.
  EXPECT_NE(client.head.find("s3pPLMBiTxaQ9kYGzzhZRbK+xOo="), std::string::npos) << client.head;
  EXPECT_EQ(client.head.find("Extensions"), std::string::npos) << "nothing is compressed";
}

TEST_F(WebSocketTest, PlayersOfBothKindsSeeTheSame) {
  WebSocketClient browser(server.port());
  ASSERT_TRUE(browser.open());
  browser.send(login("Browser"));
  Client desktop(server.port(), 2);
  desktop.login("Desktop");
  EXPECT_NE(browser.readUntil("Desktop").find("Desktop"), std::string::npos);
  browser.send(frameOf(wire::msgPositionReport, {"1234", "5678"}));
  EXPECT_TRUE(desktop.readUntil(wire::msgPosition)
                  .ends_with("\x82"
                             "1234\x82"
                             "5678"));
  desktop.say(wire::msgChat, {"-1", "hello browser"});
  EXPECT_NE(browser.readUntil("hello browser").find("hello browser"), std::string::npos);
}

TEST_F(WebSocketTest, MessagesFormAStreamHoweverTheyAreSplit) {
  WebSocketClient client(server.port());
  ASSERT_TRUE(client.open());
  const std::string bytes = login("Ann") + frameOf(wire::msgChat, {"-1", "in pieces"});
  std::string frames = WebSocketClient::frame(WebSocketClient::binary, "");
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool begins = i % 5 == 0;
    const bool ends = i % 5 == 4 || i + 1 == bytes.size();
    frames += WebSocketClient::frame(begins ? WebSocketClient::binary : WebSocketClient::continuation,
                                     bytes.substr(i, 1), ends);
    if (i % 3 == 0) frames += WebSocketClient::frame(WebSocketClient::pong, "");
    if (i == 15) break;
  }
  // The burst of control frames is used up by now. The rest is sent without any.
  frames +=
      WebSocketClient::frame(16 % 5 == 0 ? WebSocketClient::binary : WebSocketClient::continuation, bytes.substr(16));
  for (const char byte : frames) client.write(std::string(1, byte));
  EXPECT_NE(client.readUntil("in pieces").find("in pieces"), std::string::npos);
}

TEST_F(WebSocketTest, FramesSentWithTheHandshakeCount) {
  WebSocketClient client(server.port());
  client.write(WebSocketClient::handshake() +
               WebSocketClient::frame(WebSocketClient::binary, "GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n"));
  const std::string all = client.readToEnd();
  EXPECT_NE(all.find("tvqver:"), std::string::npos) << all;
}

TEST_F(WebSocketTest, ABrokenHandshakeLearnsWhatIsNeeded) {
  const std::string good = WebSocketClient::handshake();
  const auto broken = [&](const std::string& what, const std::string& by) {
    std::string text = good;
    return text.replace(text.find(what), what.size(), by);
  };
  for (const std::string& request :
       {broken("Sec-WebSocket-Version: 13", "Sec-WebSocket-Version: 8"), broken("Sec-WebSocket-Version: 13\r\n", ""),
        broken("Sec-WebSocket-Key: ", "Sec-WebSocket-Key: x"), broken("Sec-WebSocket-Key: dG", "Sec-WebSocket-Key: "),
        broken("Upgrade: websocket", "Upgrade: h2c"), broken("HTTP/1.1", "HTTP/1.0")}) {
    TcpClient client(server.port(), 20);
    client.write(request);
    const std::string answer = client.readToEnd();
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 426 ")) << request << answer;
    EXPECT_NE(answer.find("\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"), std::string::npos) << answer;
  }
  WebSocketClient client(server.port(), 21);
  ASSERT_TRUE(client.open());
  EXPECT_NE(client.head.find("\r\nServer: kelvora-server\r\n"), std::string::npos) << client.head;
}

TEST_F(WebSocketTest, FramesSentWithTheHandshakeCountOnce) {
  WebSocketClient client(server.port());
  client.write(WebSocketClient::handshake() + WebSocketClient::frame(WebSocketClient::binary, login("Ann")));
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  while (!client.hasNews() && std::chrono::steady_clock::now() < end) std::this_thread::yield();
  client.send(frameOf(wire::msgChat, {"-1", "hello"}));
  client.finish();
  EXPECT_NE(client.readToEnd().find("hello"), std::string::npos);
}

TEST_F(WebSocketTest, ServesWebFilesAndClosesCleanly) {
  WebSocketClient client(server.port());
  ASSERT_TRUE(client.open());
  expectToBeServed(client);
  WebSocketClient::Frame last;
  do last = client.readFrame();
  while (last.opcode == WebSocketClient::binary || last.opcode == WebSocketClient::continuation);
  EXPECT_EQ(last.opcode, WebSocketClient::closing);
  client.write(WebSocketClient::frame(WebSocketClient::closing, last.payload));
  EXPECT_TRUE(client.isCutOff());
}

TEST_F(WebSocketTest, ACloseHandshakeThatIsNeverAnsweredEndsAfterTwoSeconds) {
  WebSocketClient client(server.port());
  ASSERT_TRUE(client.open());
  expectToBeServed(client);
  client.readToEnd();
}

TEST_F(WebSocketTest, BothSidesMayCloseAtOnce) {
  WebSocketClient client(server.port());
  ASSERT_TRUE(client.open());
  client.write(WebSocketClient::frame(WebSocketClient::binary, "GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n") +
               WebSocketClient::frame(WebSocketClient::closing, "\x03\xE8"));
  EXPECT_NE(client.readToEnd().find("tvqver:"), std::string::npos);
}

TEST_F(WebSocketTest, ClosingAWebSocketLeavesTheGame) {
  Client other(server.port(), 2);
  other.login("Other");
  {
    WebSocketClient client(server.port());
    ASSERT_TRUE(client.open());
    client.send(login("Ann"));
    other.readUntil(wire::msgPlayerJoined);
    client.write(WebSocketClient::frame(WebSocketClient::closing, "\x03\xE8"));
    EXPECT_EQ(other.readUntil(wire::msgPlayerLeft).substr(0, 1), "2");
  }
}

TEST_F(WebSocketTest, APingIsAnsweredAndAFloodOfThemEndsTheConnection) {
  WebSocketClient client(server.port());
  ASSERT_TRUE(client.open());
  client.write(WebSocketClient::frame(WebSocketClient::ping, "abc"));
  const WebSocketClient::Frame pong = client.readFrame();
  EXPECT_EQ(pong.opcode, WebSocketClient::pong);
  EXPECT_EQ(pong.payload, "abc");
  std::string flood;
  for (int i = 0; i < 100; ++i) flood += WebSocketClient::frame(WebSocketClient::ping, "");
  client.tryWrite(flood);
  client.readToEnd();
  expectOthersToPlay();
}

TEST_F(WebSocketTest, ViolatingItsRulesEndsTheConnection) {
  using Client = WebSocketClient;
  const std::string big(70'000, 'x');
  for (const std::string& bytes : {
           Client::frame(Client::text, login("Ann")),  // no bytes
           Client::frame(Client::text, "GET / HTTP/1.0\r\n\r\n"),
           Client::frame(Client::binary, login("Ann"), true, false),  // not masked
           Client::frame(Client::continuation, "a"),                  // of nothing
           Client::frame(Client::binary, "\x80", false) + Client::frame(Client::binary, "b"),
           std::string("\xC2\x80\x01\x02\x03\x04", 6),             // a reserved bit
           std::string("\x83\x80\x01\x02\x03\x04", 6),             // a reserved opcode
           Client::frame(Client::ping, std::string(126, 'p')),     // too long for a control frame
           Client::frame(Client::ping, "", false),                 // cut
           std::string("\x82\xFF\x80\0\0\0\0\0\0\0\1\2\3\4", 14),  // a negative length
           Client::frame(Client::binary, big).substr(0, 100),      // longer than a message may be
           Client::frame(Client::binary, "x"),                     // neither a frame nor a request
       }) {
    WebSocketClient client(server.port(), static_cast<std::uint32_t>(20 + bytes.size() % 100));
    ASSERT_TRUE(client.open());
    client.tryWrite(bytes);
    const std::string answer = client.readToEnd();
    EXPECT_EQ(answer.find(wire::frameStart), std::string::npos) << "the game answers";
    EXPECT_EQ(answer.find("HTTP"), std::string::npos) << "the web server answers";
  }
  expectOthersToPlay();
}

TEST_F(WebSocketTest, AControlFrameHasAtMost125Bytes) {
  for (const auto opcode : {WebSocketClient::ping, WebSocketClient::closing}) {
    const std::string longest = "\x03\xE8" + std::string(123, 'p');
    WebSocketClient client(server.port(), 3);
    ASSERT_TRUE(client.open());
    client.write(WebSocketClient::frame(opcode, longest));
    const WebSocketClient::Frame answer = client.readFrame();
    EXPECT_EQ(answer.opcode, opcode == WebSocketClient::ping ? WebSocketClient::pong : WebSocketClient::closing);
    EXPECT_EQ(answer.payload.substr(0, 2), "\x03\xE8");
    WebSocketClient longer(server.port(), 3);
    ASSERT_TRUE(longer.open());
    longer.write(WebSocketClient::frame(opcode, longest + "p"));
    EXPECT_EQ(longer.readFrame().payload.substr(0, 2), "\x03\xEA") << "a protocol error";
    longer.readToEnd();
  }
}

TEST_F(WebSocketTest, FragmentedMessagesAreLimitedTo64KiB) {
  const std::string report = frameOf(wire::msgPositionReport, {"50000", "50000"});
  const std::string last = frameOf(wire::msgChat, {"-1", "the end"});
  std::string message = login("Ann");
  while (message.size() + 2 * report.size() + last.size() <= 65'536) message += report;
  const std::size_t room = 65'536 - message.size() - last.size();
  message += frameOf(wire::msgPositionReport, {"50000", std::string(room - 9, '1')}) + last;
  ASSERT_EQ(message.size(), 65'536U);
  const std::string start = message.substr(0, 30'000);
  const std::string rest = message.substr(30'000);
  using Frames = WebSocketClient;
  const struct {
    std::string fits;
    std::string isTooLong;
  } messages[] = {
      {Frames::frame(Frames::binary, message), Frames::frame(Frames::binary, message + "\x80")},
      {Frames::frame(Frames::binary, start, false) + Frames::frame(Frames::continuation, rest),
       Frames::frame(Frames::binary, start, false) + Frames::frame(Frames::continuation, rest + "\x80")},
  };
  for (std::uint32_t host = 30; const auto& [fits, isTooLong] : messages) {
    WebSocketClient client(server.port(), host++);
    ASSERT_TRUE(client.open());
    client.tryWrite(fits);
    EXPECT_NE(client.readUntil("the end").find("the end"), std::string::npos);
    WebSocketClient other(server.port(), host++);
    ASSERT_TRUE(other.open());
    other.tryWrite(isTooLong);
    WebSocketClient::Frame frame;
    do frame = other.readFrame();
    while (frame.opcode == WebSocketClient::binary);
    EXPECT_EQ(frame.opcode, WebSocketClient::closing);
    EXPECT_EQ(frame.payload.substr(0, 2), "\x03\xF1") << "too big";
  }
}

TEST_F(WebSocketTest, EndlessFragmentsAreTooLongAMessage) {
  WebSocketClient client(server.port());
  ASSERT_TRUE(client.open());
  client.write(WebSocketClient::frame(WebSocketClient::binary, login("Ann"), false));
  const std::string chat = frameOf(wire::msgChat, {"-1", std::string(900, 'c')});
  bool isTaken = true;
  for (int i = 0; isTaken && i < 200; ++i) {
    isTaken = client.tryWrite(WebSocketClient::frame(WebSocketClient::continuation, chat, false));
  }
  client.readToEnd();
  expectOthersToPlay();
}

TEST_F(WebSocketTest, AnUpgradeWithinAWebSocketIsRefused) {
  WebSocketClient client(server.port());
  ASSERT_TRUE(client.open());
  client.send(WebSocketClient::handshake());
  EXPECT_NE(client.readUntil("already").find(" 400 "), std::string::npos);
}

TEST_F(WebSocketTest, OnlyItsPathLeadsToTheGame) {
  for (const char* path : {"/", "/playing", "/games/kelvora/ver.txt"}) {
    WebSocketClient client(server.port());
    EXPECT_FALSE(client.open({}, path)) << path;
    EXPECT_TRUE(client.head.starts_with("HTTP/1.1 ")) << client.head;
  }
  TcpClient plain(server.port());
  plain.write("GET /play HTTP/1.0\r\n\r\n");
  EXPECT_TRUE(plain.readToEnd().starts_with("HTTP/1.1 426 "));
}

TEST(WebSocketOrigin, OtherPagesMayPlayUnlessTheOperatorSaysOtherwise) {
  const RunningServer open;
  WebSocketClient foreign(open.port());
  EXPECT_TRUE(foreign.open("Origin: http://games.example\r\n"));
  Options options;
  options.allowOrigin = "http://games.example";
  const RunningServer closed(options);
  WebSocketClient listed(closed.port());
  EXPECT_TRUE(listed.open("Origin: http://games.example\r\n"));
  WebSocketClient own(closed.port());
  EXPECT_TRUE(own.open("Origin: http://127.0.0.1\r\n"));
  WebSocketClient evil(closed.port());
  EXPECT_FALSE(evil.open("Origin: http://evil.example\r\n"));
  EXPECT_TRUE(evil.head.starts_with("HTTP/1.1 403 ")) << evil.head;
}

/// A server that trusts the proxy at 127.0.0.5.
class TrustedProxy : public testing::Test {
 protected:
  /// More connections than any busy machine makes while as many are allowed again.
  static constexpr int manyConnections = 1'000;

  /// Connects until one is answered by anything but 200, and returns the number of those before it.
  static int servedBeforeRefusal(const std::function<std::string()>& connect) {
    int served = 0;
    while (served < manyConnections && connect() == "200") ++served;
    return served;
  }

  RunningServer server{[] {
    Options options;
    options.trustedProxy = "127.0.0.5";
    return options;
  }()};

  std::string webAnswer(std::uint32_t from, const std::string& request) const {
    TcpClient client(server.port(), from);
    client.write(request);
    return client.readToEnd();
  }
  std::string statusOf(const std::string& request, std::uint32_t from = 5) const {
    const std::string answer = webAnswer(from, request);
    return answer.size() < 12 ? std::string() : answer.substr(9, 3);
  }
  std::string ask(std::uint32_t from, const std::string& forwarded) const {
    return statusOf("GET /games/kelvora/ver.txt HTTP/1.0\r\n" + forwarded + "\r\n", from);
  }
  static std::string page(const std::string& address) {
    return "GET / HTTP/1.1\r\nHost: h\r\nX-Forwarded-For: " + address + "\r\n\r\n";
  }
};

TEST_F(TrustedProxy, ItsClientsAreCountedByTheirOwnAddresses) {
  for (int i = 0; i < 60; ++i) {
    ASSERT_EQ(ask(5, "X-Forwarded-For: 192.0.2.1, 198.51.100." + std::to_string(i) + "\r\n"), "200") << i;
  }
  std::string refusal;
  EXPECT_GE(servedBeforeRefusal([&] { return refusal = ask(5, "X-Forwarded-For: 203.0.113.9\r\n"); }),
            static_cast<int>(Door::burst));
  EXPECT_EQ(refusal, "429");
  EXPECT_EQ(ask(5, ""), "400");
  EXPECT_EQ(ask(5, "X-Forwarded-For: somebody\r\n"), "400");
}

TEST_F(TrustedProxy, OthersAreNotTrusted) {
  std::vector<std::unique_ptr<TcpClient>> crowd;
  for (int i = 0; i < 16 + 32; ++i) crowd.push_back(std::make_unique<TcpClient>(server.port(), 6));
  EXPECT_EQ(ask(6, "X-Forwarded-For: 198.51.100.1\r\n"), "");
}

TEST_F(TrustedProxy, EachRequestOfAKeptConnectionHasItsOwnClient) {
  // More clients than one address may have, over one connection.
  std::string requests;
  for (int i = 0; i < 40; ++i) requests += page("198.51.100." + std::to_string(i));
  TcpClient kept(server.port(), 5);
  kept.write(requests + "GET /games/kelvora/ver.txt HTTP/1.0\r\nX-Forwarded-For: 198.51.100.99\r\n\r\n");
  const std::string all = kept.readToEnd();
  EXPECT_EQ(all.find("HTTP/1.1 4"), std::string::npos);
  EXPECT_TRUE(all.ends_with("tvqver:" KELVORA_VERSION "\n"));
  // A client that keeps one of the proxy's connections counts once, however many requests it makes.
  TcpClient single(server.port(), 5);
  std::string many;
  for (int i = 0; i < 40; ++i) many += page("203.0.113.1");
  single.write(many + "GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n");
  EXPECT_NE(single.readToEnd().find("HTTP/1.1 400"), std::string::npos) << "the last one names nobody";
  for (int i = 0; i < 31; ++i) ASSERT_EQ(ask(5, "X-Forwarded-For: 203.0.113.1\r\n"), "200") << i;
}

TEST_F(TrustedProxy, APageLoadOverNewConnectionsIsNoFlood) {
  // A direct client keeps its connections. The proxy may make one for each request.
  for (int i = 0; i < 60; ++i) {
    ASSERT_EQ(statusOf("GET / HTTP/1.0\r\nX-Forwarded-For: 203.0.113.1\r\n\r\n"), "200") << i;
  }
  WebSocketClient player(server.port(), 5);
  EXPECT_TRUE(player.open("X-Forwarded-For: 203.0.113.1\r\n"));
}

TEST_F(TrustedProxy, UpgradesCountAsNewConnections) {
  std::string head;
  EXPECT_LT(servedBeforeRefusal([&]() -> std::string {
              WebSocketClient player(server.port(), 5);
              if (player.open("X-Forwarded-For: 203.0.113.1\r\n")) return "200";
              return head = player.head;
            }),
            manyConnections);
  EXPECT_TRUE(head.starts_with("HTTP/1.1 429 ")) << head;
}

TEST_F(TrustedProxy, ClientsMayTakeTurnsOnAKeptConnection) {
  std::string requests;
  for (int i = 0; i < 90; ++i) requests += page(i % 2 == 0 ? "203.0.113.1" : "203.0.113.2");
  TcpClient kept(server.port(), 5);
  kept.write(requests + "GET /games/kelvora/ver.txt HTTP/1.0\r\nX-Forwarded-For: 203.0.113.1\r\n\r\n");
  const std::string all = kept.readToEnd();
  EXPECT_EQ(all.find("HTTP/1.1 4"), std::string::npos);
  EXPECT_TRUE(all.ends_with("tvqver:" KELVORA_VERSION "\n"));
}

TEST_F(TrustedProxy, RefusedStreamsEndAtOnce) {
  std::vector<std::unique_ptr<TcpClient>> streams;
  for (int i = 0; i < 20; ++i) {
    streams.push_back(std::make_unique<TcpClient>(server.port(), 5));
    streams.back()->write("PROXY TCP4 203.0.113.1 127.0.0.1 50000 2010\r\n\x80");
  }
  for (int i = 16; i < 20; ++i) EXPECT_TRUE(streams[static_cast<std::size_t>(i)]->isCutOff());
  const auto figures = webAnswer(6, "GET /metrics HTTP/1.0\r\n\r\n");
  EXPECT_NE(figures.find("kelvora_closed_connections_total{reason=\"too many connections\"} 4\n"), std::string::npos);
  const auto log = server.log();
  EXPECT_EQ(std::ranges::count(log, "refused 203.0.113.1: too many connections"), 4);
  EXPECT_EQ(std::ranges::count_if(log, [](const auto& line) { return line.find("disconnected") != line.npos; }), 0)
      << "they never were connected";
}

TEST_F(TrustedProxy, InsideAWebSocketTheHeaderDoesNotCount) {
  WebSocketClient client(server.port(), 5);
  ASSERT_TRUE(client.open("X-Forwarded-For: 198.51.100.1\r\n"));
  client.send("GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n");
  EXPECT_NE(client.readUntil("tvqver:").find("200 OK"), std::string::npos) << "the proxy can't add to this request";
}

TEST_F(TrustedProxy, AStreamIsCountedByTheAddressInItsFirstLine) {
  const auto line = [](const std::string& address) { return "PROXY TCP4 " + address + " 127.0.0.1 50000 2010\r\n"; };
  const auto request = std::string("GET /games/kelvora/ver.txt HTTP/1.0\r\nX-Forwarded-For: 192.0.2.77\r\n\r\n");
  for (int i = 0; i < 40; ++i) {
    ASSERT_EQ(statusOf(line("198.51.100." + std::to_string(i)) + request), "200") << i;
  }
  const int served = servedBeforeRefusal([&] { return statusOf(line("203.0.113.9") + request); });
  EXPECT_GE(served, static_cast<int>(Door::burst));
  EXPECT_LT(served, manyConnections) << "what the client itself says does not count";
  EXPECT_EQ(statusOf("PROXY UNKNOWN\r\n" + request), "");
  EXPECT_EQ(statusOf(std::string("\r\n\r\n\0\r\nQUIT\n\x21\x11\0\x0C", 16) + std::string(12, '\1') + request), "400")
      << "version 2 is not understood";
  EXPECT_EQ(statusOf(line("198.51.100.99") + request, 6), "400") << "from anybody else it is a broken request";

  Client player(server.port(), 5);
  player.write("PROXY TCP6 2001:db8::1 ::1 50000 2010\r\n");
  player.login("Ann");
  EXPECT_NE(player.readUntil(wire::msgLoginAccepted), "nothing");
  const auto log = server.log();
  EXPECT_TRUE(std::ranges::any_of(log, [](const std::string& text) { return text.ends_with("from 2001:db8::1"); }));
}

}  // namespace
}  // namespace kelvora::server
