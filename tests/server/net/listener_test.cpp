// A listener on a name with several addresses, all of this machine's loopback interface.

#include "server/net/listener.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "server/lists/hostList.h"
#include "server/net/gameServer.h"
#include "tests/server/net/tcpClient.h"

namespace kelvora::server {
namespace {

std::vector<asio::ip::address> addressesOf(asio::io_context&, const std::string& name) {
  const auto missing = asio::ip::make_address("192.0.2.1");  // reserved for examples
  if (name == "missing") return {missing, missing};
  if (name == "nowhere") throw boost::system::system_error(asio::error::host_not_found);
  if (name == "silence") throw boost::system::system_error(asio::error::host_not_found_try_again);
  const auto first = asio::ip::make_address("127.0.0.1");
  return {missing, first, asio::ip::make_address("127.0.0.2"), first};
}

/// Counts the connections of a listener.
class ListenerOnAName : public testing::Test {
 protected:
  asio::io_context context;
  int connections = 0;
  Listener listener{context,
                    "several",
                    0,
                    {.onConnection = [this](Socket) { ++connections; },
                     .onFailure = [](const std::string& reason) { FAIL() << reason; },
                     .onRecovery = [] {}},
                    addressesOf};

  const std::uint16_t port = listener.port();

  bool accepts(const std::string& address) {
    Socket client(context);
    error_code error;
    client.connect({asio::ip::make_address(address), port}, error);
    const int before = connections;
    context.restart();
    while (!error && connections == before && context.run_one_for(std::chrono::minutes(1)) > 0) {
    }
    return connections > before;
  }
};

TEST_F(ListenerOnAName, ListensOnceOnEachAddressOfTheMachineAtTheSamePort) {
  const std::string end = ":" + std::to_string(port);
  EXPECT_EQ(listener.endpointText(), "127.0.0.1" + end + ", 127.0.0.2" + end);
  EXPECT_TRUE(accepts("127.0.0.1"));
  EXPECT_TRUE(accepts("127.0.0.2"));
  EXPECT_TRUE(accepts("127.0.0.1"));
}

TEST_F(ListenerOnAName, ClosesAll) {
  listener.close();
  EXPECT_FALSE(accepts("127.0.0.1"));
  EXPECT_FALSE(accepts("127.0.0.2"));
}

TEST_F(ListenerOnAName, AtLeastOneAddressIsNeeded) {
  try {
    const Listener other(context, "missing", 2010, {}, addressesOf);
    FAIL() << "it listens on " << other.endpointText();
  } catch (const std::runtime_error& error) {
    EXPECT_TRUE(std::string(error.what()).starts_with("cannot listen on missing:2010: ")) << error.what();
  }
}

TEST_F(ListenerOnAName, ANameWithoutAnAddressIsAnError) {
  for (const auto& [name, reason] :
       {std::pair{"nowhere", "there is no such host"}, std::pair{"silence", "the name server doesn't answer"}}) {
    try {
      const Listener other(context, name, 2010, {}, addressesOf);
      FAIL() << "it listens on " << other.endpointText();
    } catch (const std::runtime_error& error) {
      EXPECT_EQ(error.what(), std::string("cannot listen on ") + name + ":2010: " + reason);
    }
  }
}

TEST_F(ListenerOnAName, AFreePortIsOneThatClientsAccept) {
  EXPECT_GE(port, 1024);
  EXPECT_LE(port, maxListedPort);
}

TEST_F(ListenerOnAName, APortInUseIsAnError) {
  EXPECT_THROW(Listener(context, "several", port, {}, addressesOf), std::runtime_error);
}

/// The lines that a server on this port, and the next one for spectators, logs at its start. Nothing if one is in use.
std::optional<std::vector<std::string>> linesAtTheStart(std::uint16_t port, int spectators) {
  asio::io_context context;
  std::vector<std::string> lines;
  Options options;
  options.port = port;
  options.rules.spectators = spectators;
  try {
    const GameServer server(context, options, [&](const std::string& line) { lines.push_back(line); });
  } catch (const std::runtime_error&) {
    return std::nullopt;
  }
  return lines;
}

TEST(ServerPort, ThatTheGameRefusesIsLogged) {
  std::mt19937 random(std::random_device{}());
  std::optional<std::vector<std::string>> lines;
  std::uint16_t port = 0;
  for (int tries = 0; !lines && tries < 100; ++tries) {
    port = static_cast<std::uint16_t>(40'000 + random() % 20'000);
    lines = linesAtTheStart(port, 1);
  }
  const std::string rest = " is for browsers only: the game and lists accept ports up to 32766";
  EXPECT_EQ(lines, (std::vector{"port " + std::to_string(port) + rest, "port " + std::to_string(port + 1) + rest}));
  EXPECT_EQ(linesAtTheStart(0, 1), std::vector<std::string>{});
}

}  // namespace
}  // namespace kelvora::server
