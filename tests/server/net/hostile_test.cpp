// Hostile clients on real loopback sockets. Whatever they do, the others play on.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "generated/version.h"
#include "protocol/wireFormat.h"
#include "server/net/pacedSocket.h"
#include "tests/server/net/runningServer.h"
#include "tests/server/net/tcpClient.h"

namespace kelvora::server {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

std::size_t residentMebibytes() {
  std::size_t all = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> all >> resident;
  return resident * 4096 >> 20;
}

/// Two players from an address of their own, one of whom watches the other fly.
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

  /// Ann moves on a step `count` times, and Bob sees each step, in order, with only those between them whom the others
  /// sent. Before each step `attack` has its turn. The answer is the median time on the way.
  Milliseconds play(int count, const std::function<void(int)>& attack) {
    std::vector<Milliseconds> times;
    for (int i = 0; i < count; ++i) {
      attack(i);
      const std::string x = std::to_string(x_ += x_ < 50'000 ? 1 : -1);
      const auto start = Clock::now();
      ann_.say(wire::msgPositionReport, {x, y_});
      std::string seen;
      do {
        seen = bob_.readUntil(wire::msgPosition);
      } while (seen != "nothing" && !seen.starts_with(node_ + wire::fieldSeparator));
      EXPECT_EQ(seen, node_ + wire::fieldSeparator + x + wire::fieldSeparator + y_);
      if (testing::Test::HasFailure()) break;
      times.emplace_back(Clock::now() - start);
      while (Clock::now() - start < std::chrono::milliseconds(10)) attack(i);  // as fast as reports may come
    }
    if (times.empty()) return Milliseconds(1e9);
    std::ranges::nth_element(times, times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2));
    return times[times.size() / 2];
  }

 private:
  Client ann_;
  Client bob_;
  std::string node_;
  int x_ = 0;
  std::string y_;
};

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

constexpr Milliseconds oneTick(40);
constexpr int steps = 40;

std::string frame(std::int16_t id, const std::vector<std::string>& fields) { return wire::buildFrame(id, fields); }
std::string login(const std::string& name) { return frame(wire::msgLogin, {name, "", "0", KELVORA_VERSION}); }

class Hostile : public testing::Test {
 protected:
  RunningServer server;
  const std::uint16_t port = server.port();
  Game game{port};

  void expectPlay(const std::function<void(int)>& attack) { EXPECT_LT(game.play(steps, attack), oneTick); }
};

/// Connections that pour the same bytes in for as long as they are taken.
class Flood {
 public:
  Flood(std::uint16_t port, int count, std::string first, std::string bytes) : bytes_(std::move(bytes)) {
    for (int i = 0; i < count; ++i) {
      clients_.push_back(std::make_unique<TcpClient>(port, static_cast<std::uint32_t>(10 + i)));
      clients_.back()->keepLittleUnsent();
      clients_.back()->push(first);
    }
  }
  void pour() {
    for (const auto& client : clients_) {
      const ssize_t size = client->push(bytes_);
      if (size > 0) poured_ += static_cast<std::size_t>(size);
    }
  }
  std::size_t poured() const { return poured_; }

 private:
  std::string bytes_;
  std::vector<std::unique_ptr<TcpClient>> clients_;
  std::size_t poured_ = 0;
};

TEST_F(Hostile, FloodsOfPlayersAreHeldBack) {
  std::string bytes;
  for (int i = 0; i < 100; ++i) {
    bytes += frame(wire::msgPositionReport, {"50000", "50000"}) + frame(wire::msgChat, {"-1", "buy my stuff"}) +
             frame(wire::msgSpawnRequest, {}) + frame(wire::msgBuyRequest, {"1"}) +
             frame(wire::msgActivateRequest, {"1"}) + frame(wire::msgPingReply, {"1"});
  }
  Flood flood(port, 4, login("Flood"), bytes);
  expectPlay([&](int) { flood.pour(); });
  EXPECT_GT(flood.poured(), 64U << 10) << "there was a flood";
}

TEST_F(Hostile, FloodsOfTinyFramesFromSixtyAreHeldBack) {
  std::string bytes;
  for (int i = 0; i < 1'000; ++i) bytes += frame(wire::msgChat, {});
  Flood flood(port, 60, "", bytes);
  const auto start = Clock::now();
  expectPlay([&](int) { flood.pour(); });
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  // Of each, half a second's worth at once and then the rate; the rest waits in the buffers of both sides.
  EXPECT_LT(static_cast<double>(flood.poured()), 60 * (PacedSocket::bytesPerSecond * (seconds + 0.5) + (256 << 10)));
}

TEST_F(Hostile, StreamsWithoutAnEndAreCutOff) {
  const std::string endless(1 << 16, 'x');
  const std::string start(1, wire::frameStart);
  const struct {
    std::string first;
    std::string portion;
  } streams[] = {
      {start + static_cast<char>(wire::msgChat), endless},
      {start + static_cast<char>(wire::msgLogin), endless},
      {start + static_cast<char>(wire::msgLogin), std::string(1 << 16, wire::frameStart)},
      {"", std::string(1 << 16, wire::frameStart)},
      {"", std::string(1 << 16, wire::frameEnd)},
      {"", endless},
      {login("Long") + start + static_cast<char>(wire::msgChat), endless},
  };
  const std::size_t before = residentMebibytes();
  std::vector<std::unique_ptr<Client>> clients;
  for (std::uint32_t host = 10; const auto& stream : streams) {
    clients.push_back(std::make_unique<Client>(port, host++));
    clients.back()->keepLittleUnsent();
    clients.back()->push(stream.first);
  }
  expectPlay([&](int) {
    for (std::size_t i = 0; i < clients.size(); ++i) clients[i]->push(streams[i].portion);
  });
  for (std::size_t i = 0; i < clients.size(); ++i) {
    // A client that has been cut off can't go on to send a gigabyte.
    EXPECT_LT(clients[i]->push(streams[i].portion), 0) << i;
  }
  EXPECT_LT(residentMebibytes(), before + 16);
}

TEST_F(Hostile, LeavingInTheMiddleOfAFrame) {
  const std::string session = login("Half") + frame(wire::msgPositionReport, {"50000", "50000"});
  int times = 0;
  expectPlay([&](int i) {
    if (times > i * 3) return;
    // Every length from nothing to the whole of it, now with an orderly end and now with a reset.
    TcpClient client(port, static_cast<std::uint32_t>(10 + times % 100));
    client.push(session.substr(0, static_cast<std::size_t>(times) % (session.size() + 1)));
    if (++times % 2 == 0) client.reset();
  });
  EXPECT_GT(times, static_cast<int>(session.size()));
  Client late(port, 202);
  late.login("Late");
  EXPECT_NE(late.readUntil(wire::msgLoginAccepted), "nothing");
}

TEST_F(Hostile, AThousandPlayersComeAndGo) {
  constexpr int comings = 1'000;
  const auto comeAndGo = [&](int i) {
    Client client(port, static_cast<std::uint32_t>(2 + i % 190));
    client.login("Again");
    EXPECT_NE(client.readUntil(wire::msgLoginAccepted), "nothing") << i;
    if (i % 2 == 0) client.push(std::string(1, wire::frameStart) + static_cast<char>(wire::msgChat));
    if (i % 3 == 0) client.reset();
  };
  int count = 0;
  while (count < 100) comeAndGo(count++);
  const std::size_t before = residentMebibytes();
  const auto descriptors = openDescriptors();
  expectPlay([&](int i) {
    while (count < 100 + (comings - 100) * (i + 1) / steps && !HasFailure()) comeAndGo(count++);
  });
  EXPECT_EQ(count, comings);
  EXPECT_LT(residentMebibytes(), before + 32);  // the sanitizer keeps what was freed
  EXPECT_LE(openDescriptors(), descriptors + 2) << "the last ones may be on their way out";
}

TEST_F(Hostile, HalfFramesAreWaitedForTenSecondsAndCostNothing) {
  Flood flood(port, 20, "\x80\x87half", "x");
  expectPlay([&](int i) {
    if (i % 10 == 0) flood.pour();
  });
}

TEST_F(Hostile, ClientsThatNeverReadAreDroppedOrCostAtMostTheirQueue) {
  Flood deaf(port, 4, login("Deaf"), frame(wire::msgChat, {"-1", std::string(4'000, 'x')}));
  const std::size_t before = residentMebibytes();
  expectPlay([&](int i) {
    if (i % 4 == 0) deaf.pour();
  });
  EXPECT_LT(residentMebibytes(), before + 16);
}

TEST_F(Hostile, SixteenOfOneAddressComeInAndNoMore) {
  std::vector<std::unique_ptr<TcpClient>> crowd;
  for (int i = 0; i < 16; ++i) crowd.push_back(std::make_unique<TcpClient>(port, 10));
  TcpClient oneTooMany(port, 10);
  EXPECT_TRUE(oneTooMany.isCutOff());
  Client other(port, 11);
  other.login("Other");
  EXPECT_NE(other.readUntil(wire::msgLoginAccepted), "nothing");
  expectPlay([](int) {});
}

TEST_F(Hostile, ThousandsOfConnectionsFromManyAddresses) {
  // Some hold the line as long as they can, some come and go.
  std::vector<std::unique_ptr<TcpClient>> held;
  int count = 0;
  const std::size_t before = residentMebibytes();
  expectPlay([&](int i) {
    while (count < 50 * (i + 1)) {
      auto client = std::make_unique<TcpClient>(port, static_cast<std::uint32_t>(2 + count % 190));
      if (++count % 2 == 0) held.push_back(std::move(client));
    }
  });
  EXPECT_EQ(count, 50 * steps);
  EXPECT_LT(residentMebibytes(), before + 32);
  Client late(port, 202);
  late.login("Late");
  EXPECT_NE(late.readUntil(wire::msgLoginAccepted), "nothing") << "the silent ones make room";
}

TEST_F(Hostile, LoginsByTheHundred) {
  // On one connection only the first one counts.
  Client many(port, 10);
  std::string all;
  for (int i = 0; i < 300; ++i) all += login("Many" + std::to_string(i));
  many.write(all);
  EXPECT_EQ(many.readUntil(wire::msgLoginAccepted).substr(0, 4),
            "2\x82"
            "3\x82");
  // On many connections the places run out, and then the patience with the address.
  std::vector<std::unique_ptr<Client>> others;
  expectPlay([&](int i) {
    if (others.size() > static_cast<std::size_t>(i) * 5) return;
    others.push_back(std::make_unique<Client>(port, 11));
    others.back()->push(login("Other"));
  });
  int denied = 0;
  int cutOff = 0;
  int in = 0;
  for (const auto& other : others) {
    const std::string first = other->read();
    if (first.empty()) {
      ++cutOff;
    } else if (static_cast<unsigned char>(first[0]) == wire::msgLoginDenied) {
      ++denied;
      EXPECT_NE(first.find("full"), std::string::npos);
    } else {
      ++in;
    }
  }
  EXPECT_EQ(in, 3);
  EXPECT_GE(denied, 13);
  EXPECT_GE(cutOff, 100);
}

TEST_F(Hostile, GiantNamesAndEveryByteInThem) {
  std::string every;
  for (int byte = 0; byte < 256; ++byte) every += static_cast<char>(byte);
  std::string unframed = every;
  std::erase_if(unframed,
                [](char c) { return c == wire::frameStart || c == wire::frameEnd || c == wire::fieldSeparator; });
  const std::string logins[] = {login(std::string(33, 'x')),
                                login(std::string(4'000, 'x')),
                                login(unframed),
                                login(std::string(1'000'000, 'x')),
                                login(every),
                                login("a\nb"),
                                login(std::string(1, '\0'))};
  std::uint32_t host = 10;
  expectPlay([&](int i) {
    if (static_cast<std::size_t>(i) >= std::size(logins) || host > 10 + static_cast<std::uint32_t>(i)) return;
    Client client(port, ++host);
    client.push(logins[static_cast<std::size_t>(i)]);
    const std::string first = client.read();
    EXPECT_TRUE(first.empty() || static_cast<unsigned char>(first[0]) == wire::msgLoginDenied) << i;
  });
  EXPECT_EQ(host, 10 + std::size(logins));
}

TEST_F(Hostile, EveryMessageWithEveryKindOfField) {
  std::string bytes;
  const std::vector<std::string> fields = {
      "",         "0",   "-1",  "1",    "-32768", "32767",  "32768", "99999999999999999999",
      "1e308",    "nan", "inf", "-inf", "0x10",   "1e-400", ".",     "-",
      "\x01\xFF", " 1",  "1 ",  "+1",   "5",      "6",      "7",     std::string(300, '9')};
  for (int id = 0; id < 256; ++id) {
    const char code = static_cast<char>(id);
    if (code == wire::frameStart || code == wire::frameEnd) continue;
    for (const std::string& one : fields) {
      for (const char* other : {"", "1", "nan"}) {
        bytes += wire::frameStart + std::string(1, code) + one + wire::fieldSeparator + other + wire::frameEnd;
      }
    }
  }
  std::vector<std::unique_ptr<TcpClient>> clients;
  for (std::uint32_t host = 10; host < 13; ++host) {
    clients.push_back(std::make_unique<TcpClient>(port, host));
    clients.back()->push(login("Odd"));
  }
  std::vector<std::size_t> sent(clients.size());
  expectPlay([&](int) {
    for (std::size_t i = 0; i < clients.size(); ++i) {
      const ssize_t size = clients[i]->push(bytes.substr(sent[i], 1 << 14));
      if (size > 0) sent[i] += static_cast<std::size_t>(size);
    }
  });
  EXPECT_EQ(sent, std::vector<std::size_t>(clients.size(), bytes.size())) << "all of it was said";
}

TEST_F(Hostile, NoiseOfAllBytes) {
  std::mt19937 random(1);
  std::uint32_t host = 10;
  expectPlay([&](int i) {
    if (host > 10 + static_cast<std::uint32_t>(i)) return;
    TcpClient client(port, ++host);
    std::string noise = i % 2 == 0 ? login("Noise") : std::string(1, wire::frameStart);
    for (int byte = 0; byte < 3'000; ++byte) noise += static_cast<char>(random());
    client.push(noise);
    if (i % 3 == 0) client.reset();
  });
  EXPECT_GE(host, 10U + steps);
}

TEST_F(Hostile, ReplaysOfAWholeSession) {
  std::string session = login("Replay");
  for (int i = 0; i < 30; ++i) session += frame(wire::msgPositionReport, {std::to_string(50'000 + i), "50000"});
  session +=
      frame(wire::msgPingReply, {"1"}) + frame(wire::msgBuyRequest, {"1"}) + frame(wire::msgActivateRequest, {"1"});
  std::vector<std::unique_ptr<Client>> clients;
  for (std::uint32_t host = 10; host < 13; ++host) clients.push_back(std::make_unique<Client>(port, host));
  int times = 0;
  expectPlay([&](int) {
    if (++times > 20) return;  // else there is much to wait for at the end
    for (const auto& client : clients) client->push(session);
  });
  for (const auto& client : clients) {
    client->finish();
    int logins = 0;
    for (std::string text = client->read(); !text.empty(); text = client->read()) {
      if (static_cast<unsigned char>(text[0]) == wire::msgLoginAccepted) ++logins;
    }
    EXPECT_EQ(logins, 1) << "a login is good for once";
  }
}

/// With fewer descriptors than it would take.
TEST(HostileDescriptors, TheirEndIsNotTheServersEnd) {
  RunningServer server;
  Game game(server.port());
  rlimit usual{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
  std::vector<std::unique_ptr<Client>> crowd;
  for (std::uint32_t i = 0; i < 20; ++i) crowd.push_back(std::make_unique<Client>(server.port(), 10 + i));
  crowd.back()->login("Crowd");
  crowd.back()->readUntil(wire::msgLoginAccepted);  // so that all of them have been accepted
  const int next = ::dup(0);
  ::close(next);
  rlimit few = usual;
  few.rlim_cur = static_cast<rlim_t>(next + 1);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
  // Both are in one process: this one takes the last descriptor, so the server has none for it.
  const auto unseen = std::make_unique<TcpClient>(server.port(), 60);
  // The want of descriptors stays for as long as it takes; a machine with other work to do may be late by itself.
  Milliseconds best = game.play(steps, [](int) {});
  for (int tries = 1; tries < 3 && best >= oneTick; ++tries) best = std::min(best, game.play(steps, [](int) {}));
  EXPECT_LT(best, oneTick);
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
  crowd.clear();
  Client late(server.port(), 62);
  late.login("Late");
  EXPECT_NE(late.readUntil(wire::msgLoginAccepted), "nothing");
  const auto log = server.log();
  EXPECT_TRUE(std::ranges::any_of(log, [](const std::string& line) { return line.starts_with("cannot accept"); }));
}

}  // namespace
}  // namespace kelvora::server
