// One budget of connections, whatever they speak.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "server/net/gameServer.h"
#include "tests/server/net/runningServer.h"
#include "tests/server/net/webAnswer.h"
#include "tests/server/net/webSocketClient.h"

namespace kelvora::server {
namespace {

using Clock = std::chrono::steady_clock;

/// Clients who take turns to be silent, to play over TCP and over WebSocket, and to ask for a page.
class Mixture {
 public:
  explicit Mixture(std::uint16_t port) : port_(port) {}

  void add(std::uint32_t host) {
    auto client = std::make_unique<WebSocketClient>(port_, host);
    switch (clients_.size() % 4) {
      case 0:
        client->write("\x80");
        break;
      case 1:
        EXPECT_TRUE(client->open());
        client->send("\x80");
        break;
      case 2:
        client->write("GET / HTTP/1.1\r\n");
        break;
      default:
        break;
    }
    clients_.push_back(std::move(client));
  }
  WebSocketClient& operator[](std::size_t i) { return *clients_[i]; }
  std::size_t size() const { return clients_.size(); }
  /// The indices of those whose connection has ended.
  std::vector<std::size_t> gone() {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < clients_.size(); ++i) {
      if (clients_[i]->hasEnded()) found.push_back(i);
    }
    return found;
  }

 private:
  std::uint16_t port_;
  std::vector<std::unique_ptr<WebSocketClient>> clients_;
};

/// Clients who say nothing go after five seconds. A machine that takes as long to bring all of them in shows nothing
/// about the other limits.
class Budget : public testing::Test {
 protected:
  template <class Trial>
  static void tryInTime(const Trial& trial) {
    for (;;) {
      const auto start = Clock::now();
      const RunningServer server;
      const auto verdict = trial(server);
      if (Clock::now() - start < std::chrono::seconds(4)) return verdict();
    }
  }
};

constexpr const char* pageRequest = "GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n";

std::string askForPage(std::uint16_t port, std::uint32_t host) {
  TcpClient client(port, host);
  client.write(pageRequest);
  return client.readToEnd();
}

TEST_F(Budget, NinetySixConnectionsAreInAndTheNextTakesTheOldestOnesPlace) {
  tryInTime([](const RunningServer& server) {
    Mixture crowd(server.port());
    while (crowd.size() < 96) crowd.add(static_cast<std::uint32_t>(10 + crowd.size() / 16));
    const std::string answer = askForPage(server.port(), 200);
    const auto gone = crowd.gone();
    return [=] {
      EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 OK"));
      EXPECT_EQ(gone, std::vector<std::size_t>{0});
    };
  });
}

TEST_F(Budget, NinetyFiveLeaveRoomForOne) {
  tryInTime([](const RunningServer& server) {
    Mixture crowd(server.port());
    while (crowd.size() < 95) crowd.add(static_cast<std::uint32_t>(10 + crowd.size() / 16));
    const std::string answer = askForPage(server.port(), 200);
    const auto gone = crowd.gone();
    return [=] {
      EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 OK"));
      EXPECT_EQ(gone, std::vector<std::size_t>{});
    };
  });
}

TEST_F(Budget, SixteenConnectionsPerAddressAcrossProtocolsAndTheNextWaits) {
  tryInTime([](const RunningServer& server) {
    Mixture crowd(server.port());
    while (crowd.size() < 16) crowd.add(10);
    TcpClient late(server.port(), 10);
    late.write(pageRequest);
    const std::string other = ask(server.port(), "GET /metrics HTTP/1.0\r\n\r\n", 11).body;
    const auto gone = crowd.gone();
    crowd[0].finish();
    const std::string answer = late.readToEnd();
    return [=] {
      EXPECT_NE(other.find("\nkelvora_connections 17\n"), std::string::npos) << other;
      EXPECT_EQ(gone, std::vector<std::size_t>{});
      EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 OK"));
    };
  });
}

TEST_F(Budget, KeptConnectionsMakeRoomForTheirOwnAddress) {
  tryInTime([](const RunningServer& server) {
    std::vector<std::unique_ptr<TcpClient>> crowd;
    for (std::uint32_t i = 0; i < 24; ++i) {
      crowd.push_back(std::make_unique<TcpClient>(server.port(), i < 8 ? 11 : 10));
      if (i >= 10) continue;
      crowd.back()->write("GET / HTTP/1.1\r\nHost: h\r\n\r\n");
      std::string answer;
      while (!answer.ends_with("</html>\n")) {
        const std::string more = crowd.back()->readSome();
        if (more.empty()) break;
        answer += more;
      }
    }
    const auto gone = [&crowd] {
      std::vector<std::size_t> found;
      for (std::size_t i = 0; i < crowd.size(); ++i) {
        if (crowd[i]->hasEnded()) found.push_back(i);
      }
      return found;
    };
    const std::string first = askForPage(server.port(), 10);
    const auto goneAtFirst = gone();
    const TcpClient sixteenth(server.port(), 10);
    const std::string second = askForPage(server.port(), 10);
    const auto goneAtLast = gone();
    return [=] {
      EXPECT_TRUE(first.starts_with("HTTP/1.1 200 OK"));
      EXPECT_EQ(goneAtFirst, std::vector<std::size_t>{8}) << "the oldest of the two that the address keeps";
      EXPECT_TRUE(second.starts_with("HTTP/1.1 200 OK"));
      EXPECT_EQ(goneAtLast, (std::vector<std::size_t>{8, 9})) << "the first one freed one place, not two";
    };
  });
}

/// A server with two ports, whose event loop the test runs by hand.
class BudgetOfTwoPorts : public testing::Test {
 protected:
  ~BudgetOfTwoPorts() override {
    server_.stop();
    server_.stop();
    context_.poll();
  }

  static Options options() {
    Options options;
    options.port = 0;
    options.webPort = 0;
    return options;
  }
  void settle() {
    while (context_.poll() > 0) {
    }
  }
  void add(std::uint16_t to, std::uint32_t host) { clients.push_back(std::make_unique<TcpClient>(to, host)); }
  std::ptrdiff_t connected() const {
    return std::ranges::count_if(clients, [](const auto& client) { return !client->hasEnded(); });
  }

 private:
  asio::io_context context_;
  GameServer server_{context_, options(), [](const std::string&) {}};

 protected:
  const std::uint16_t port = server_.port();
  const std::uint16_t webPort = [this] {
    const std::string endpoint = server_.webEndpointText();
    return static_cast<std::uint16_t>(std::stoi(endpoint.substr(endpoint.rfind(':') + 1)));
  }();
  std::vector<std::unique_ptr<TcpClient>> clients;
};

TEST_F(BudgetOfTwoPorts, NewcomersAtTheSameTimeDisplaceOneEach) {
  for (std::uint32_t i = 0; i < 96; ++i) add(i % 2 == 0 ? port : webPort, 10 + i / 12);
  settle();
  ASSERT_EQ(connected(), 96);
  for (std::uint32_t pair = 0; pair < 5; ++pair) {
    add(port, 100 + pair);
    add(webPort, 100 + pair);
    settle();
    EXPECT_EQ(connected(), 96);
  }
}

TEST_F(BudgetOfTwoPorts, AnAddressHasItsLimitOnBothTogether) {
  for (std::uint32_t i = 0; i < 60; ++i) add(i % 2 == 0 ? port : webPort, 10);
  settle();
  EXPECT_EQ(connected(), 16 + 32) << "sixteen, and those who wait";
}

}  // namespace
}  // namespace kelvora::server
