#include "server/arena/enclosure.h"

#include "tests/server/arena/pieces.h"

namespace kelvora::server {
namespace {

/// Ann's tail crosses itself around 10000 to 30000, and Bob is inside.
struct EnclosureTest : testing::Test {
  std::map<ClientId, Player> players{
      {1, playerAt(1, 0, 0)}, {2, playerAt(2, 20'000, 20'000)}, {3, playerAt(3, 40'000, 20'000)}};
  Player& ann = players.at(1);
  Player& bob = players.at(2);
  Player& cat = players.at(3);
  PendingCaptures pending;

  EnclosureTest() {
    fly(ann,
        {spotAt(5'000, 10'000), spotAt(30'000, 10'000), spotAt(30'000, 30'000), spotAt(10'000, 30'000),
         spotAt(10'000, 5'000)},
        testTime);
  }
};

TEST_F(EnclosureTest, TheOldestVertexOfTheLoopNamesTheCapture) {
  const Enclosure enclosure = enclosedBy(ann, players, pending);
  EXPECT_EQ(enclosure.losers, std::vector<Player*>{&bob});
  ASSERT_TRUE(enclosure.vertex.has_value());
  EXPECT_EQ(enclosure.vertex->x, "30000");
  EXPECT_EQ(enclosure.vertex->y, "10000");
}

TEST_F(EnclosureTest, OnlyTheLivingInsideAreCaptured) {
  bob.isAlive = false;
  const Enclosure enclosure = enclosedBy(ann, players, pending);
  EXPECT_TRUE(enclosure.losers.empty());
  EXPECT_FALSE(enclosure.vertex.has_value());
}

TEST_F(EnclosureTest, SeveralAreCapturedTogether) {
  cat.spot = spotAt(25'000, 15'000);
  EXPECT_EQ(enclosedBy(ann, players, pending).losers, (std::vector<Player*>{&bob, &cat}));
}

TEST_F(EnclosureTest, WinnersPendingCaptureKeepsItsVertex) {
  pending.add(ann.node, 9, spotAt(1, 2), testTime, 0);
  EXPECT_EQ(enclosedBy(ann, players, pending).vertex->x, "1");
}

TEST_F(EnclosureTest, VertexNamedByAnotherIsSkipped) {
  pending.add(cat.node, 9, spotAt(30'000, 10'000), testTime, 0);
  const Enclosure enclosure = enclosedBy(ann, players, pending);
  EXPECT_EQ(enclosure.vertex->x, "30000");
  EXPECT_EQ(enclosure.vertex->y, "30000");
}

TEST_F(EnclosureTest, WithEveryVertexNamedTheCaptureHasNone) {
  pending.add(cat.node, 9, spotAt(30'000, 10'000), testTime, 0);
  pending.add(cat.node, 9, spotAt(30'000, 30'000), testTime, 0);
  pending.add(cat.node, 9, spotAt(10'000, 30'000), testTime, 0);
  const Enclosure enclosure = enclosedBy(ann, players, pending);
  EXPECT_EQ(enclosure.losers, std::vector<Player*>{&bob});
  EXPECT_FALSE(enclosure.vertex.has_value()) << "the newest vertex is not part of the loop";
}

}  // namespace
}  // namespace kelvora::server
