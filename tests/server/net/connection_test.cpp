// The limits of one connection in each protocol. The tests set the clock.

#include "server/net/connection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <memory>
#include <string>

#include "protocol/messages.h"
#include "server/net/pacedSocket.h"
#include "tests/server/net/webSocketClient.h"
#include "tests/support/wireMessage.h"

namespace kelvora::server {
namespace {

using std::chrono::seconds;

/// A connection and its client. The parameter says whether they use a WebSocket.
class ConnectionLimits : public testing::TestWithParam<bool> {
 protected:
  ConnectionLimits() {
    settle();
    if (!GetParam()) return;
    client.write(WebSocketClient::handshake());
    client.waitUntilDelivered();
    settle();
  }
  ~ConnectionLimits() override {
    if (closed.empty()) connection->close("over");
    settle();
    EXPECT_FALSE(closed.empty());
    EXPECT_EQ(connection.use_count(), 1) << "nothing is under way forever";
  }

  void settle() {
    context_.restart();
    while (context_.poll() > 0) {
    }
  }
  void push(const std::string& bytes) {
    lastActivity = Connection::Clock::now();
    client.push(GetParam() ? WebSocketClient::frame(WebSocketClient::binary, bytes) : bytes);
  }
  void say(const std::string& bytes) {
    push(bytes);
    client.waitUntilDelivered();
    settle();
  }
  /// Expects that the connection lasts this long after its last activity.
  void expectToLast(seconds time, const std::string& reason) {
    connection->closeIfOverdue(lastActivity + time);
    settle();
    EXPECT_EQ(closed, "");
    connection->closeIfOverdue(Connection::Clock::now() + time + std::chrono::milliseconds(1));
    settle();
    EXPECT_EQ(closed, reason);
  }

 private:
  asio::io_context context_;
  Acceptor door_{context_, {asio::ip::address_v4::loopback(), 0}};

 protected:
  Connection::Clock::time_point lastActivity = Connection::Clock::now();
  WebSocketClient client{door_.local_endpoint().port()};
  std::string closed;  // the reason
  bool hangsUpOnFrame = false;
  std::size_t heard = 0;      // bytes of the frames
  std::size_t bodyTaken = 0;  // bytes of a large answer
  const std::shared_ptr<Connection> connection = [this] {
    const auto made = std::make_shared<Connection>(
        door_.accept(), ClientId{1},
        Connection::Handlers{.onForwarded = {},
                             .onGame = [](ClientId) {},
                             .onFrame =
                                 [this](ClientId, std::string_view text) {
                                   heard += text.size() + 2;
                                   if (hangsUpOnFrame) connection->hangUp();
                                 },
                             .onRequest = [this](ClientId, const HttpRequest& request) { return answer(request); },
                             .onClosed = [this](ClientId, const std::string& reason) { closed = reason; }});
    made->start();
    return made;
  }();

 private:
  HttpAnswer answer(const HttpRequest& request) {
    if (request.isUpgrade) return {.status = 101};
    if (request.path() == "/page") return {.body = "page", .mayKeepAlive = true};
    if (request.path() == "/short") {
      HttpAnswer outdated{.mayKeepAlive = true};
      const auto text = std::make_shared<std::string>(40'000, 'x');
      outdated.append(text);
      outdated.more = [more = outdated.more, text](std::size_t most) {
        std::string piece = more(most);
        text->clear();
        return piece;
      };
      return outdated;
    }
    constexpr std::size_t size = std::size_t{64} << 20;
    return {.more =
                [this](std::size_t most) {
                  const std::size_t piece = std::min(most, size - bodyTaken);
                  bodyTaken += piece;
                  return std::string(piece, 'x');
                },
            .moreSize = size};
  }
};

INSTANTIATE_TEST_SUITE_P(Plain, ConnectionLimits, testing::Values(false));
INSTANTIATE_TEST_SUITE_P(WebSocket, ConnectionLimits, testing::Values(true));

class WebSocketLimits : public ConnectionLimits {};

INSTANTIATE_TEST_SUITE_P(WebSocket, WebSocketLimits, testing::Values(true));

TEST_P(ConnectionLimits, FirstByteMustArriveWithinTenSeconds) {
  expectToLast(seconds(10), "timed out before sending anything");
}

TEST_P(ConnectionLimits, AllStagesUpToTheFirstByteHaveTenSecondsTogether) {
  const auto opened = connection->opened();
  connection->extendDeadline(-seconds(6));  // as if that long had passed
  EXPECT_EQ(connection->opened(), opened - seconds(6));
  if (!GetParam()) {
    client.write(WebSocketClient::handshake());
    settle();
  }
  EXPECT_EQ(connection->opened(), opened - seconds(6)) << "an upgrade is no new beginning";
  lastActivity = opened;
  expectToLast(seconds(4), "timed out before sending anything");
}

TEST_P(ConnectionLimits, AnAnswerIsANewBeginning) {
  connection->extendDeadline(-seconds(6));
  const auto before = Connection::Clock::now();
  say("GET /page HTTP/1.1\r\nHost: h\r\n\r\n");
  EXPECT_GE(connection->opened(), before);
}

TEST_P(ConnectionLimits, AnEmptyLineBeforeARequestIsIgnored) {
  say("\r\nGET /page HTTP/1.1\r\nHost: h\r\n\r\n");
  expectToLast(seconds(5), "timed out between requests");
}

TEST_P(ConnectionLimits, AnAnswerThatIsCutShortEndsTheConnection) {
  say("GET /short HTTP/1.1\r\nHost: h\r\n\r\n");
  EXPECT_EQ(closed, "the answer is outdated");
}

TEST_P(ConnectionLimits, RequestMustArriveWithinFiveSeconds) {
  say("GET / HT");
  expectToLast(seconds(5), "timed out during a request");
}

TEST_P(ConnectionLimits, TricklingRequestGetsNoExtraTime) {
  say("GET / HT");
  const auto start = lastActivity;
  say("TP/1.1\r\n");
  lastActivity = start;
  expectToLast(seconds(5), "timed out during a request");
}

TEST_P(ConnectionLimits, KeptConnectionMustSendAgainWithinFiveSeconds) {
  say("GET /page HTTP/1.1\r\nHost: h\r\n\r\n");
  expectToLast(seconds(5), "timed out between requests");
}

TEST_P(ConnectionLimits, AConnectionIsKeptBetweenTwoRequests) {
  EXPECT_FALSE(connection->isKept()) << "it has not asked for anything";
  say("GET /page HTTP/1.1\r\nHost: h\r\n\r\n");
  EXPECT_TRUE(connection->isKept());
  say("GET /pa");
  EXPECT_FALSE(connection->isKept()) << "a request has begun";
  say("ge HTTP/1.1\r\nHost: h\r\n\r\n");
  EXPECT_TRUE(connection->isKept());
  say("\x80");
  EXPECT_FALSE(connection->isKept()) << "a game has begun";
}

TEST_P(ConnectionLimits, AKeptConnectionThatIsUpgradedIsNoLongerKept) {
  if (GetParam()) return;
  say("GET /page HTTP/1.1\r\nHost: h\r\n\r\n");
  say(WebSocketClient::handshake());
  EXPECT_FALSE(connection->isKept());
  EXPECT_EQ(closed, "");
}

TEST_P(ConnectionLimits, AnswerMustBeReadWithinFiveSecondsAndIsNotBuffered) {
  client.keepLittleUnread();
  say("GET /large HTTP/1.1\r\nHost: h\r\n\r\n");
  EXPECT_GT(bodyTaken, 0U);
  EXPECT_LT(bodyTaken, 4U << 20) << "beside what the system holds, 16 KiB";
  expectToLast(seconds(5), "stopped reading");
}

TEST_P(ConnectionLimits, PlayerMayBeSilentForTwoMinutes) {
  say(frameOf(wire::msgPing, {}));
  EXPECT_EQ(heard, 3U);
  expectToLast(seconds(120), "timed out");
}

TEST_P(ConnectionLimits, SlowFrameDoesNotCountAsSilence) {
  say("\x80\x84");
  say("1");
  expectToLast(seconds(120), "timed out");
}

TEST_P(ConnectionLimits, PeerMustCloseWithinTwoSeconds) {
  say(frameOf(wire::msgPing, {}));
  const auto start = Connection::Clock::now();
  connection->hangUp();
  settle();
  say(frameOf(wire::msgPing, {}));
  lastActivity = start;
  expectToLast(seconds(2), "closed by the server");
}

TEST_P(ConnectionLimits, BothSidesMayEndAtOnce) {
  hangsUpOnFrame = true;
  const std::string frame = frameOf(wire::msgPing, {});
  if (GetParam()) {
    client.write(WebSocketClient::frame(WebSocketClient::binary, frame) +
                 WebSocketClient::frame(WebSocketClient::closing, "\x03\xE8"));
  } else {
    client.write(frame);
    client.finish();
  }
  client.waitUntilDelivered();
  settle();
  EXPECT_NE(closed, "");
}

TEST_P(ConnectionLimits, FramesAfterTheEndAreIgnored) {
  hangsUpOnFrame = true;
  say(frameOf(wire::msgPing, {}) + frameOf(wire::msgPing, {}));
  EXPECT_EQ(heard, 3U) << "only the first";
}

TEST_P(ConnectionLimits, AnyCapitalBeginsARequest) {
  say("A");
  expectToLast(seconds(5), "timed out during a request");
}

TEST_P(ConnectionLimits, NothingElseBeginsAnything) {
  say("@");
  EXPECT_EQ(closed, "sent invalid data");
}

TEST_P(WebSocketLimits, AFloodOfControlFramesEndsAtOnce) {
  std::string pings;
  for (int i = 0; i < 30; ++i) pings += WebSocketClient::frame(WebSocketClient::ping, "");
  client.write(pings);
  client.waitUntilDelivered();
  settle();
  EXPECT_EQ(closed, "sent too many control frames");
}

TEST_P(WebSocketLimits, TextIsInvalidEvenIfEmpty) {
  client.write(WebSocketClient::frame(WebSocketClient::text, ""));
  client.waitUntilDelivered();
  settle();
  EXPECT_EQ(closed, "sent invalid data");
}

TEST_P(WebSocketLimits, UnmaskedFramesAreInvalid) {
  client.write(WebSocketClient::frame(WebSocketClient::binary, "\x80", true, false));
  client.waitUntilDelivered();
  settle();
  EXPECT_EQ(closed, "sent invalid data");
}

TEST_P(WebSocketLimits, TheClientMayClose) {
  client.write(WebSocketClient::frame(WebSocketClient::closing, "\x03\xE8"));
  client.waitUntilDelivered();
  settle();
  EXPECT_EQ(closed, "closed by the client");
}

TEST_P(ConnectionLimits, NothingIsKeptForAClientWhoDoesNotRead) {
  client.keepLittleUnread();
  say(frameOf(wire::msgPing, {}));
  const std::string frame = frameOf(wire::msgChat, {std::string(1'021, 'c')});
  while (closed.empty()) {
    connection->send(frame);
    settle();
  }
  EXPECT_EQ(closed, "stopped reading");
  EXPECT_TRUE(client.isResetAtTheEnd());
}

TEST_P(ConnectionLimits, NothingIsKeptForAClientWhoDoesNotTakeAnAnswer) {
  client.keepLittleUnread();
  say("GET /large HTTP/1.1\r\nHost: h\r\n\r\n");
  expectToLast(seconds(5), "stopped reading");
  EXPECT_TRUE(client.isResetAtTheEnd());
}

TEST_P(ConnectionLimits, WhatIsUnderWayAtAnOrderlyEndArrives) {
  say(frameOf(wire::msgPing, {}));
  connection->send(std::string(30'000, 'x'));
  connection->hangUp();
  settle();
  connection->closeIfOverdue(Connection::Clock::now() + seconds(3));
  settle();
  EXPECT_EQ(closed, "closed by the server");
  EXPECT_GE(client.readToEnd().size(), 30'000U);
}

TEST_P(ConnectionLimits, UnreadDataIsAtMost256KiB) {
  say(frameOf(wire::msgPing, {}));
  const std::string frame = frameOf(wire::msgChat, {std::string(1'021, 'c')});
  ASSERT_EQ(frame.size(), 1'024U);
  for (int i = 0; i < 256; ++i) connection->send(frame);
  connection->closeIfOverdue(Connection::Clock::now());
  EXPECT_EQ(closed, "");
  connection->send(frame);
  settle();
  EXPECT_EQ(closed, "stopped reading");
}

TEST_P(ConnectionLimits, IncomingDataIsRateLimited) {
  const std::string frame = frameOf(wire::msgChat, {std::string(97, 'c')});
  const auto start = Connection::Clock::now();
  for (int i = 0; i < 1'000; ++i) {
    push(frame);  // more than the server takes
    settle();
  }
  const std::chrono::duration<double> time = Connection::Clock::now() - start;
  EXPECT_GE(heard, 15U << 10) << "the burst";
  EXPECT_LE(static_cast<double>(heard), PacedSocket::bytesPerSecond * (time.count() + 0.5) + PacedSocket::maxRead);
}

TEST_P(ConnectionLimits, AFrameIsAtMost4KiB) {
  say(std::string(1, wire::frameStart) + std::string(4'096, 'x'));
  EXPECT_EQ(closed, "");
  say("x");
  EXPECT_EQ(closed, "sent invalid data");
}

TEST_P(ConnectionLimits, ARequestIsAtMost4KiB) {
  const std::string start = "GET /page HTTP/1.1\r\nHost: h\r\nA: ";
  say(start + std::string(4'096 - start.size() - 4, 'a') + "\r\n\r\n");
  EXPECT_EQ(closed, "") << "it is answered, and kept";
  say(start + std::string(4'096 - start.size() - 3, 'a') + "\r\n\r\n");
  expectToLast(seconds(2), "closed by the server");
}

TEST(ProxiedConnection, ItsLineAndTheFirstByteComeWithinTenSeconds) {
  for (const bool isComplete : {false, true}) {
    asio::io_context context;
    Acceptor door(context, {asio::ip::address_v4::loopback(), 0});
    TcpClient client(door.local_endpoint().port());
    std::string address;
    std::string closed;
    const auto connection = std::make_shared<Connection>(
        door.accept(), ClientId{1},
        Connection::Handlers{
            .onForwarded = [&](ClientId, const asio::ip::address& named) { address = named.to_string(); },
            .onGame = [](ClientId) {},
            .onFrame = [](ClientId, std::string_view) {},
            .onRequest = [](ClientId, const HttpRequest&) { return HttpAnswer{}; },
            .onClosed = [&](ClientId, const std::string& reason) { closed = reason; }});
    connection->start();
    client.write(isComplete ? "PROXY TCP4 192.0.2.1 198.51.100.1 50000 2010\r\n" : "PROXY TCP4 192.0.2.1");
    while (context.poll() > 0) {
    }
    EXPECT_EQ(address, isComplete ? "192.0.2.1" : "");
    connection->closeIfOverdue(connection->opened() + seconds(10));
    while (context.poll() > 0) {
    }
    EXPECT_EQ(closed, "");
    connection->closeIfOverdue(connection->opened() + seconds(10) + std::chrono::milliseconds(1));
    context.restart();
    while (context.poll() > 0) {
    }
    EXPECT_EQ(closed, "timed out before sending anything");
  }
}

TEST(ProxiedConnection, AnInvalidLineEndsItAtOnce) {
  asio::io_context context;
  Acceptor door(context, {asio::ip::address_v4::loopback(), 0});
  TcpClient client(door.local_endpoint().port());
  std::string closed;
  const auto connection = std::make_shared<Connection>(
      door.accept(), ClientId{1},
      Connection::Handlers{.onForwarded = [](ClientId, const asio::ip::address&) { FAIL() << "nobody is named"; },
                           .onGame = [](ClientId) { FAIL() << "the rest counts"; },
                           .onFrame = [](ClientId, std::string_view) {},
                           .onRequest = [](ClientId, const HttpRequest&) { return HttpAnswer{}; },
                           .onClosed = [&](ClientId, const std::string& reason) { closed = reason; }});
  connection->start();
  client.write("PROXY UNKNOWN\r\n\x80");
  client.waitUntilDelivered();
  while (context.poll() > 0) {
  }
  EXPECT_EQ(closed, "the proxy's line is invalid");
}

}  // namespace
}  // namespace kelvora::server
