// Hostile clients on real loopback sockets. Whatever they do, the others play on.

#include "tests/server/net/hostile.h"

#include <sys/resource.h>

#include <filesystem>
#include <random>
#include <thread>

#include "server/net/pacedSocket.h"

namespace kelvora::server {
namespace {

using Clock = std::chrono::steady_clock;
using Hostile = UnderAttack;

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

TEST_F(Hostile, FloodsOfPlayersAreThrottled) {
  std::string bytes;
  for (int i = 0; i < 100; ++i) {
    bytes += frameOf(wire::msgPositionReport, {"50000", "50000"}) + frameOf(wire::msgChat, {"-1", "buy my stuff"}) +
             frameOf(wire::msgSpawnRequest, {}) + frameOf(wire::msgBuyRequest, {"1"}) +
             frameOf(wire::msgActivateRequest, {"1"}) + frameOf(wire::msgPingReply, {"1"});
  }
  Flood flood(port, 4, login("Flood"), bytes);
  expectPlay([&](int) { flood.pour(); });
  EXPECT_GT(flood.poured(), 64U << 10) << "there was a flood";
}

TEST_F(Hostile, FloodsOfTinyFramesFromSixtyClientsAreThrottled) {
  std::string bytes;
  for (int i = 0; i < 1'000; ++i) bytes += frameOf(wire::msgChat, {});
  Flood flood(port, 60, "", bytes);
  const auto start = Clock::now();
  expectPlay([&](int) { flood.pour(); });
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  // Each is allowed half a second's worth at once and then the rate. The rest waits in the buffers of both sides.
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
  std::vector<std::unique_ptr<Client>> clients;
  for (std::uint32_t host = 10; const auto& stream : streams) {
    clients.push_back(std::make_unique<Client>(port, host++));
    clients.back()->keepLittleUnsent();
    clients.back()->push(stream.first);
  }
  const std::size_t growth = expectPlay([&](int) {
    for (std::size_t i = 0; i < clients.size(); ++i) clients[i]->push(streams[i].portion);
  });
  for (std::size_t i = 0; i < clients.size(); ++i) {
    // A client that has been cut off can't go on to send a gigabyte.
    EXPECT_LT(clients[i]->push(streams[i].portion), 0) << i;
  }
  EXPECT_LT(growth, allowedBytes(clients.size(), 1));
}

TEST_F(Hostile, LeavingInTheMiddleOfAFrame) {
  const std::string session = login("Half") + frameOf(wire::msgPositionReport, {"50000", "50000"});
  int times = 0;
  expectPlay([&](int i) {
    if (times > i * 3) return;
    // Every length from nothing to the whole text, alternating between an orderly end and a reset.
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
  const auto descriptors = openDescriptors();
  const std::size_t growth = expectPlay([&](int i) {
    while (count < 100 + (comings - 100) * (i + 1) / steps && !HasFailure()) comeAndGo(count++);
  });
  EXPECT_EQ(count, comings);
  EXPECT_LT(growth, allowedBytes(GameServer::maxConnections));
  const auto end = Clock::now() + std::chrono::minutes(1);
  while (openDescriptors() > descriptors && Clock::now() < end) std::this_thread::yield();
  EXPECT_LE(openDescriptors(), descriptors) << "the last ones may have been on their way out";
}

TEST_F(Hostile, HalfFramesTimeOutAfterTenSecondsAndCostNothing) {
  Flood flood(port, 20, "\x80\x87half", "x");
  expectPlay([&](int i) {
    if (i % 10 == 0) flood.pour();
  });
}

TEST_F(Hostile, ClientsThatNeverReadAreDroppedOrCostAtMostTheirQueue) {
  Flood deaf(port, 4, login("Deaf"), frameOf(wire::msgChat, {"-1", std::string(4'000, 'x')}));
  const std::size_t growth = expectPlay([&](int i) {
    if (i % 4 == 0) deaf.pour();
  });
  EXPECT_LT(growth, allowedBytes(4, 4));
}

TEST_F(Hostile, OfOneAddressAtMostSixteenAreInAndThirtyTwoWait) {
  std::vector<std::unique_ptr<TcpClient>> crowd;
  for (int i = 0; i < 16 + 32; ++i) crowd.push_back(std::make_unique<TcpClient>(port, 10));
  TcpClient oneTooMany(port, 10);
  EXPECT_TRUE(oneTooMany.isCutOff());
  Client other(port, 11);
  other.login("Other");
  EXPECT_NE(other.readUntil(wire::msgLoginAccepted), "nothing");
  expectPlay([](int) {});
}

TEST_F(Hostile, ThousandsOfConnectionsFromManyAddresses) {
  // Some stay connected as long as they can, some come and go.
  std::vector<std::unique_ptr<TcpClient>> held;
  int count = 0;
  const std::size_t growth = expectPlay([&](int i) {
    while (count < 50 * (i + 1)) {
      auto client = std::make_unique<TcpClient>(port, static_cast<std::uint32_t>(2 + count % 190));
      if (++count % 2 == 0) held.push_back(std::move(client));
    }
  });
  EXPECT_EQ(count, 50 * steps);
  EXPECT_LT(growth, allowedBytes(GameServer::maxConnections));
  Client late(port, 202);
  late.login("Late");
  EXPECT_NE(late.readUntil(wire::msgLoginAccepted), "nothing") << "the silent ones make room";
}

TEST_F(Hostile, HundredsOfLogins) {
  // On one connection only the first one counts.
  Client many(port, 10);
  std::string all;
  for (int i = 0; i < 300; ++i) all += login("Many" + std::to_string(i));
  many.write(all);
  EXPECT_EQ(many.readUntil(wire::msgLoginAccepted).substr(0, 4),
            "2\x82"
            "3\x82");
  // On many connections the slots run out, and then the address's limit is reached.
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
  // How much that is depends on the system's buffers.
  for (std::size_t i = 0; i < clients.size(); ++i) clients[i]->write(bytes.substr(sent[i]));
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
  for (int i = 0; i < 30; ++i) session += frameOf(wire::msgPositionReport, {std::to_string(50'000 + i), "50000"});
  session += frameOf(wire::msgPingReply, {"1"}) + frameOf(wire::msgBuyRequest, {"1"}) +
             frameOf(wire::msgActivateRequest, {"1"});
  std::vector<std::unique_ptr<Client>> clients;
  for (std::uint32_t host = 10; host < 13; ++host) clients.push_back(std::make_unique<Client>(port, host));
  int times = 0;
  expectPlay([&](int) {
    if (++times > 20) return;  // otherwise the test would end with a long wait
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

/// With fewer descriptors than it would need.
TEST(HostileDescriptors, RunningOutDoesNotEndTheServer) {
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
  // Client and server share a process: this connection takes the last descriptor, so the server has none left for it.
  const auto unseen = std::make_unique<TcpClient>(server.port(), 60);
  game.play(steps, [](int) {});
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
  crowd.clear();
  Client late(server.port(), 62);
  late.login("Late");
  EXPECT_NE(late.readUntil(wire::msgLoginAccepted), "nothing");
  const auto log = server.log();
  const auto has = [&](const std::string& start) {
    return std::ranges::count_if(log, [&](const std::string& line) { return line.starts_with(start); });
  };
  EXPECT_EQ(has("cannot accept connections: "), 1) << "however often it tries";
  EXPECT_EQ(has("can accept connections again"), 1);
}

}  // namespace
}  // namespace kelvora::server
