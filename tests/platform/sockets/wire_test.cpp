#include "platform/sockets/wire.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "platform/sockets/hostAddresses.h"
#include "tests/platform/sockets/loopbackServer.h"

namespace kelvora {
namespace {

TEST(Wire, AConnectionThatWasEstablishedNeverFailsToConnect) {
  // Otherwise the next address of the host would go on with half a session.
  const LoopbackServer server;
  const std::vector<HostAddress> addresses = findAddresses("127.0.0.1", server.port, HostKind::Numeric);
  ASSERT_EQ(addresses.size(), 1U);
  Wire wire;
  ASSERT_TRUE(wire.connect(addresses[0]));
  while (wire.connecting() == Wire::Step::NotYet) ASSERT_TRUE(waitForNews());
  ASSERT_EQ(wire.connecting(), Wire::Step::Done);
  // System calls fail from now on.
  closeSocket(socketConnectedTo(server.port));
  EXPECT_EQ(wire.connecting(), Wire::Step::Done);
  std::array<char, 16> buffer;
  EXPECT_EQ(wire.receive(buffer).step, Wire::Step::Broken);
  EXPECT_EQ(wire.send("x"), 0U);
}

TEST(Wire, ARefusedConnectionIsBroken) {
  LoopbackServer server;
  const std::vector<HostAddress> addresses = findAddresses("127.0.0.1", server.port, HostKind::Numeric);
  ASSERT_EQ(addresses.size(), 1U);
  server.stopListening();
  Wire wire;
  // Some systems tell at once.
  if (!wire.connect(addresses[0])) return;
  Wire::Step step = wire.connecting();
  for (; step == Wire::Step::NotYet; step = wire.connecting()) ASSERT_TRUE(waitForNews());
  EXPECT_EQ(step, Wire::Step::Broken);
}

}  // namespace
}  // namespace kelvora
