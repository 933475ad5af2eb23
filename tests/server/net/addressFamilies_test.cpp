// The server over IPv4 and IPv6, on the loopback interface.

#include <gtest/gtest.h>

#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "generated/version.h"
#include "server/moderation/network.h"
#include "tests/server/net/runningServer.h"

namespace kelvora::server {
namespace {

using Tcp = asio::ip::tcp;

/// The loopback addresses of this machine: 127.0.0.1, and ::1 unless the machine lacks IPv6.
std::vector<asio::ip::address> loopbackAddresses() {
  std::vector<asio::ip::address> found{asio::ip::address_v4::loopback()};
  asio::io_context context;
  Tcp::acceptor probe(context);
  error_code error;
  probe.open(Tcp::v6(), error);
  if (!error) probe.bind({asio::ip::address_v6::loopback(), 0}, error);
  if (error) {
    std::cout << "This machine has no ::1: " << error.message() << "\n";
  } else {
    found.emplace_back(asio::ip::address_v6::loopback());
  }
  return found;
}

Options at(const std::string& address) {
  Options options;
  options.address = address;
  options.webPort = 0;
  return options;
}

class AddressFamilies : public testing::TestWithParam<asio::ip::address> {
 protected:
  Tcp::socket connect(const asio::ip::address& address, std::uint16_t port) {
    Tcp::socket socket(context_);
    socket.connect({address, port});
    return socket;
  }
  /// All bytes up to the end of the connection.
  static std::string readToEnd(Tcp::socket& socket) {
    std::string all;
    error_code error;
    asio::read(socket, asio::dynamic_buffer(all), error);
    return all;
  }
  void expectBothPortsServed(const RunningServer& server, const asio::ip::address& address) {
    for (const std::uint16_t port : {server.port(), server.webPort()}) {
      Tcp::socket socket = connect(address, port);
      asio::write(socket, asio::buffer(std::string("GET /games/kelvora/ver.txt HTTP/1.0\r\n\r\n")));
      EXPECT_TRUE(readToEnd(socket).ends_with("\r\n\r\ntvqver:" KELVORA_VERSION "\n")) << address;
    }
  }

 private:
  asio::io_context context_;
};

INSTANTIATE_TEST_SUITE_P(Loopback, AddressFamilies, testing::ValuesIn(loopbackAddresses()),
                         [](const auto& test) { return std::string(test.param.is_v6() ? "Ipv6" : "Ipv4"); });

TEST_P(AddressFamilies, OneAddressIsServed) {
  const RunningServer server(at(GetParam().to_string()));
  expectBothPortsServed(server, GetParam());
  std::ostringstream endpoint;
  endpoint << Tcp::endpoint(GetParam(), server.port());
  EXPECT_EQ(server.endpointText(), endpoint.str());
}

TEST_P(AddressFamilies, TheAddressOfAllServesBoth) {
  const RunningServer server(at(loopbackAddresses().size() == 2 ? "::" : "0.0.0.0"));
  expectBothPortsServed(server, GetParam());
}

TEST_P(AddressFamilies, ANameIsServedOnAllOfItsAddresses) {
  asio::io_context context;
  Tcp::resolver resolver(context);
  const RunningServer server(at("localhost"));
  for (const auto& entry : resolver.resolve("localhost", "")) expectBothPortsServed(server, entry.endpoint().address());
}

TEST_P(AddressFamilies, TheLimitsOfAnAddressHold) {
  const RunningServer server(at(GetParam().to_string()));
  std::vector<Tcp::socket> crowd;
  for (int i = 0; i < 16 + 32; ++i) crowd.push_back(connect(GetParam(), server.port()));
  Tcp::socket oneTooMany = connect(GetParam(), server.port());
  EXPECT_EQ(readToEnd(oneTooMany), "");
  const auto log = server.log();
  ASSERT_EQ(log.size(), 1U);
  EXPECT_EQ(log[0], "refused " + networkOf(GetParam()) + ": too many connections");
}

}  // namespace
}  // namespace kelvora::server
