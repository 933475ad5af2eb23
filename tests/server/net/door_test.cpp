#include "server/net/door.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::server {
namespace {

/// What a new connection must pass.
bool admits(Door& door, const std::string& network, Millis now) {
  return door.allowsConnection(network, now) && door.takesIn(network, now);
}

TEST(ServerDoor, OneAddressHasAtMostSixteenConnections) {
  Door door;
  for (int i = 0; i < 16; ++i) EXPECT_TRUE(admits(door, "a", 1'000)) << i;
  EXPECT_FALSE(admits(door, "a", 1'000));
  EXPECT_FALSE(door.hasPlace("a"));
  EXPECT_TRUE(door.hasPlace("b"));
  EXPECT_TRUE(admits(door, "b", 1'000)) << "others are not held to that";
  EXPECT_TRUE(door.hasPlace("b"));
  door.left("a");
  EXPECT_TRUE(door.hasPlace("a"));
  EXPECT_TRUE(admits(door, "a", 1'000));
  EXPECT_FALSE(admits(door, "a", 1'000));
}

TEST(ServerDoor, WithoutALimitOneAddressHasAnyNumber) {
  Door door;
  for (int i = 0; i < 40; ++i) EXPECT_TRUE(door.takesIn("a", 1'000, false)) << i;
  EXPECT_FALSE(door.takesIn("a", 1'000)) << "they count all the same";
  for (int i = 0; i < 25; ++i) door.left("a");
  EXPECT_TRUE(door.takesIn("a", 1'000));
  EXPECT_FALSE(door.takesIn("a", 1'000));
}

TEST(ServerDoor, ReconnectingIsAllowedTwiceASecond) {
  Door door;
  const auto visit = [&](Millis now) {
    const bool isIn = admits(door, "a", now);
    if (isIn) door.left("a");
    return isIn;
  };
  for (int i = 0; i < 32; ++i) EXPECT_TRUE(visit(1'000)) << i;
  EXPECT_FALSE(visit(1'000));
  EXPECT_FALSE(visit(1'499));
  EXPECT_TRUE(visit(1'501));
  EXPECT_FALSE(visit(1'502));
  EXPECT_TRUE(admits(door, "b", 1'502));
}

TEST(ServerDoor, ForgetsIdleHostsFirstAndConnectedOnesNever) {
  Door door;
  for (int i = 0; i < 16; ++i) EXPECT_TRUE(admits(door, "inside", 0));
  for (std::size_t i = 1; i < Door::maxNetworks; ++i) {
    const std::string name = std::to_string(i);
    ASSERT_TRUE(admits(door, name, static_cast<Millis>(i)));
    door.left(name);
  }
  EXPECT_TRUE(admits(door, "newcomer", 16'100));
  EXPECT_TRUE(admits(door, "another", 16'100));
  EXPECT_FALSE(admits(door, "inside", 16'100)) << "sixteen are inside still";
}

TEST(ServerDoor, AConnectionThatIsNotNewCostsNothing) {
  Door door;
  while (door.allowsConnection("busy", 0)) {
  }
  EXPECT_FALSE(admits(door, "busy", 0));
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(door.takesIn("busy", 0));
    door.left("busy");
  }
  for (int i = 0; i < Door::maxPerNetwork; ++i) EXPECT_TRUE(door.takesIn("busy", 0));
  EXPECT_FALSE(door.takesIn("busy", 0)) << "it counts while it is in";
  EXPECT_TRUE(door.takesIn("other", 0));
}

/// A door at which "hasty" has used up its connections.
class DoorOfMany : public testing::Test {
 protected:
  DoorOfMany() {
    while (admits(door, "hasty", 20'000)) door.left("hasty");
  }
  /// Fills the memory with visitors who came at that time and have left.
  void fill(Millis now) {
    for (std::size_t i = 1; i < Door::maxNetworks; ++i) {
      ASSERT_TRUE(admits(door, std::to_string(i), now));
      door.left(std::to_string(i));
    }
  }

  Door door;
};

TEST_F(DoorOfMany, RemembersRecentHostsWhileThereAreOlderOnes) {
  fill(0);
  EXPECT_TRUE(admits(door, "newcomer", 20'001));
  EXPECT_FALSE(admits(door, "hasty", 20'001));
}

TEST_F(DoorOfMany, ForgetsRecentHostsIfThereAreTooMany) {
  fill(20'000);
  EXPECT_TRUE(admits(door, "newcomer", 20'001));
  EXPECT_TRUE(admits(door, "hasty", 20'001));
}

}  // namespace
}  // namespace kelvora::server
