#include "server/net/door.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::server {
namespace {

constexpr Door::Terms newConnection;
constexpr Door::Terms notNew{.isNew = false};
constexpr Door::Terms unlimited{.isLimited = false};
constexpr Door::Terms takingOver{.takesOver = true};

TEST(ServerDoor, OneAddressHasAtMostSixteenConnections) {
  Door door;
  for (int i = 0; i < 16; ++i) EXPECT_TRUE(door.admit("a", 1'000, newConnection)) << i;
  EXPECT_FALSE(door.admit("a", 1'000, newConnection));
  EXPECT_FALSE(door.hasPlace("a"));
  EXPECT_TRUE(door.hasPlace("b"));
  EXPECT_TRUE(door.admit("b", 1'000, newConnection)) << "others are not held to that";
  EXPECT_TRUE(door.hasPlace("b"));
  door.left("a");
  EXPECT_TRUE(door.hasPlace("a"));
  EXPECT_TRUE(door.admit("a", 1'000, newConnection));
  EXPECT_FALSE(door.admit("a", 1'000, newConnection));
}

TEST(ServerDoor, WithoutALimitOneAddressHasAnyNumber) {
  Door door;
  for (int i = 0; i < 40; ++i) EXPECT_TRUE(door.admit("a", 1'000, unlimited)) << i;
  EXPECT_FALSE(door.admit("a", 1'000, newConnection)) << "they count all the same";
  for (int i = 0; i < 25; ++i) door.left("a");
  EXPECT_TRUE(door.admit("a", 1'000, newConnection));
  EXPECT_FALSE(door.admit("a", 1'000, newConnection));
}

TEST(ServerDoor, AConnectionThatTakesOverAPlaceNeedsNoOther) {
  Door door;
  for (int i = 0; i < 16; ++i) EXPECT_TRUE(door.admit("a", 1'000, newConnection)) << i;
  for (int i = 16; i < 32; ++i) EXPECT_TRUE(door.admit("a", 1'000, takingOver)) << i;
  EXPECT_FALSE(door.admit("a", 1'000, takingOver)) << "it is charged for";
  EXPECT_FALSE(door.hasPlace("a"));
  door.left("a");
  EXPECT_TRUE(door.hasPlace("a")) << "it was not counted twice";
}

TEST(ServerDoor, OnlyThoseWhoComeInAreChargedFor) {
  Door door;
  for (int i = 0; i < 16; ++i) EXPECT_TRUE(door.admit("a", 1'000, newConnection)) << i;
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(door.admit("a", 1'000, newConnection)) << "there is no place";
  for (int i = 0; i < 16; ++i) door.left("a");
  for (int i = 0; i < 16; ++i) EXPECT_TRUE(door.admit("a", 1'000, newConnection)) << i;
  for (int i = 0; i < 16; ++i) door.left("a");
  EXPECT_FALSE(door.admit("a", 1'000, newConnection)) << "that was the burst of 32";
}

TEST(ServerDoor, ReconnectingIsAllowedTwiceASecond) {
  Door door;
  const auto visit = [&](Millis now) {
    const bool isIn = door.admit("a", now, newConnection);
    if (isIn) door.left("a");
    return isIn;
  };
  for (int i = 0; i < 32; ++i) EXPECT_TRUE(visit(1'000)) << i;
  EXPECT_FALSE(visit(1'000));
  EXPECT_FALSE(visit(1'499));
  EXPECT_TRUE(visit(1'501));
  EXPECT_FALSE(visit(1'502));
  EXPECT_TRUE(door.admit("b", 1'502, newConnection));
}

TEST(ServerDoor, ForgetsIdleHostsFirstAndConnectedOnesNever) {
  Door door;
  for (int i = 0; i < 16; ++i) EXPECT_TRUE(door.admit("inside", 0, newConnection));
  for (std::size_t i = 1; i < Door::maxNetworks; ++i) {
    const std::string name = std::to_string(i);
    ASSERT_TRUE(door.admit(name, static_cast<Millis>(i), newConnection));
    door.left(name);
  }
  EXPECT_TRUE(door.admit("newcomer", 16'100, newConnection));
  EXPECT_TRUE(door.admit("another", 16'100, newConnection));
  EXPECT_FALSE(door.admit("inside", 16'100, newConnection)) << "sixteen are inside still";
}

TEST(ServerDoor, AConnectionThatIsNotNewCostsNothing) {
  Door door;
  while (door.admit("busy", 0, newConnection)) door.left("busy");
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(door.admit("busy", 0, notNew));
    door.left("busy");
  }
  for (int i = 0; i < Door::maxPerNetwork; ++i) EXPECT_TRUE(door.admit("busy", 0, notNew));
  EXPECT_FALSE(door.admit("busy", 0, notNew)) << "it counts while it is in";
  EXPECT_TRUE(door.admit("other", 0, notNew));
}

/// A door at which "hasty" has used up its connections.
class DoorOfMany : public testing::Test {
 protected:
  DoorOfMany() {
    while (door.admit("hasty", 20'000, newConnection)) door.left("hasty");
  }
  /// Fills the memory with visitors who came at that time and have left.
  void fill(Millis now) {
    for (std::size_t i = 1; i < Door::maxNetworks; ++i) {
      ASSERT_TRUE(door.admit(std::to_string(i), now, newConnection));
      door.left(std::to_string(i));
    }
  }

  Door door;
};

TEST_F(DoorOfMany, RemembersRecentHostsWhileThereAreOlderOnes) {
  fill(0);
  EXPECT_TRUE(door.admit("newcomer", 20'001, newConnection));
  EXPECT_FALSE(door.admit("hasty", 20'001, newConnection));
}

TEST_F(DoorOfMany, ForgetsRecentHostsIfThereAreTooMany) {
  fill(20'000);
  EXPECT_TRUE(door.admit("newcomer", 20'001, newConnection));
  EXPECT_TRUE(door.admit("hasty", 20'001, newConnection));
}

}  // namespace
}  // namespace kelvora::server
