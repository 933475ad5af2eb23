#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "generated/version.h"
#include "protocol/messages.h"
#include "server/net/gameServer.h"
#include "tests/server/net/runningServer.h"
#include "tests/server/net/tcpClient.h"
#include "tests/support/allocatedBytes.h"
#include "tests/support/wireMessage.h"

namespace kelvora::server {

/// A bound below what docs/server.md allows for this many connections, `deaf` of which leave much unread. A mebibyte
/// more is for log lines, remembered addresses and the test's own clients.
constexpr std::size_t allowedBytes(std::size_t connections, std::size_t deaf = 0) {
  return connections * (std::size_t{7} << 10) + deaf * (std::size_t{400} << 10) + (std::size_t{1} << 20);
}

/// Two players on their own addresses. One watches the other fly.
class Game {
 public:
  explicit Game(std::uint16_t port) : ann_(port, 200), bob_(port, 201) {
    ann_.login("Ann");
    const std::string accepted = ann_.readUntil(wire::msgLoginAccepted);
    const auto fields = wire::splitFields(accepted);
    if (fields.size() != 4) throw std::runtime_error("Ann is not let in");
    node_ = fields[1];
    x_ = std::stoi(std::string(fields[2]));
    y_ = fields[3];
    bob_.login("Bob");
    bob_.readUntil(wire::msgLoginAccepted);
  }

  /// Ann moves `count` times. Bob must see each move, in order, with only other players' positions in between. `attack`
  /// is called before each move and for a while after it.
  void play(int count, const std::function<void(int)>& attack) {
    for (int i = 0; i < count && !testing::Test::HasFailure(); ++i) {
      attack(i);
      const std::string x = std::to_string(x_ += x_ < 50'000 ? 1 : -1);
      const auto start = std::chrono::steady_clock::now();
      ann_.say(wire::msgPositionReport, {x, y_});
      std::string seen;
      do {
        seen = bob_.readUntil(wire::msgPosition);
      } while (seen != "nothing" && !seen.starts_with(node_ + wire::fieldSeparator));
      EXPECT_EQ(seen, node_ + wire::fieldSeparator + x + wire::fieldSeparator + y_);
      while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(10))
        attack(i);  // as fast as reports may come
    }
  }

 private:
  Client ann_;
  Client bob_;
  std::string node_;
  int x_ = 0;
  std::string y_;
};

inline constexpr int steps = 40;

/// A server with two players on it, while a test attacks it.
class UnderAttack : public testing::Test {
 protected:
  /// The attackers are in the same process, which may open no more than 1024 files on many machines.
  static void SetUpTestSuite() {
    rlimit files{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &files), 0);
    files.rlim_cur = std::min<rlim_t>(files.rlim_max, 4'096);
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &files), 0);
  }

  RunningServer server;
  const std::uint16_t port = server.port();
  Game game{port};

  /// Expects that the two play on. Returns the maximum growth of the process in bytes.
  std::size_t expectPlay(const std::function<void(int)>& attack) {
    const std::size_t before = allocatedBytes();
    std::size_t most = before;
    game.play(steps, [&](int i) {
      attack(i);
      most = std::max(most, allocatedBytes());
    });
    return most - before;
  }
};

/// Connections that send the same bytes for as long as the server takes them. They read nothing unless told to.
class Flood {
 public:
  Flood(std::uint16_t port, int count, const std::string& first, std::string bytes, bool isReading = false)
      : bytes_(std::move(bytes)), isReading_(isReading) {
    for (int i = 0; i < count; ++i) {
      clients_.push_back(std::make_unique<TcpClient>(port, static_cast<std::uint32_t>(10 + i)));
      clients_.back()->keepLittleUnsent();
      clients_.back()->push(first);
    }
  }
  void pour() {
    for (const auto& client : clients_) {
      if (isReading_) client->drain();
      const ssize_t size = client->push(bytes_);
      if (size > 0) poured_ += static_cast<std::size_t>(size);
    }
  }
  std::size_t poured() const { return poured_; }

 private:
  std::string bytes_;
  bool isReading_;
  std::vector<std::unique_ptr<TcpClient>> clients_;
  std::size_t poured_ = 0;
};

}  // namespace kelvora::server
