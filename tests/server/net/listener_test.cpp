// A listener on a name with several addresses, all of this machine's loopback interface.

#include "server/net/listener.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <system_error>
#include <vector>

#include "server/lists/hostList.h"
#include "tests/server/net/tcpClient.h"

namespace kelvora::server {
namespace {

std::vector<asio::ip::address> addressesOf(asio::io_context&, const std::string& name) {
  const auto missing = asio::ip::make_address("192.0.2.1");  // reserved for examples
  if (name == "missing") return {missing, missing};
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
  } catch (const std::system_error& error) {
    EXPECT_TRUE(std::string(error.what()).starts_with("cannot listen on missing:2010: ")) << error.what();
  }
}

TEST_F(ListenerOnAName, AFreePortIsOneThatClientsAccept) {
  EXPECT_GE(port, 1024);
  EXPECT_LE(port, maxListedPort);
}

TEST_F(ListenerOnAName, APortInUseIsAnError) {
  EXPECT_THROW(Listener(context, "several", port, {}, addressesOf), std::system_error);
}

}  // namespace
}  // namespace kelvora::server
