#include "server/arena/weapons.h"

#include "tests/server/arena/pieces.h"

namespace kelvora::server {
namespace {

/// Two players. A ball's radius is 367.5 world units.
struct WeaponsTest : testing::Test {
  std::map<ClientId, Player> players{{1, playerAt(1, 10'000, 10'000)}, {2, playerAt(2, 50'000, 10'000)}};
  Player& ann = players.at(1);
  Player& bob = players.at(2);

  /// True if Ann's weapons hit Bob. Expects no other hits.
  bool annHitsBob() {
    const auto hits = hitsNow(players, testTime);
    if (hits.empty()) return false;
    EXPECT_EQ(hits.size(), 1U);
    EXPECT_EQ(hits[0].winner, &ann);
    EXPECT_EQ(hits[0].loser, &bob);
    return true;
  }
};

TEST_F(WeaponsTest, ALaserReachesFromItsOwnerToTheEdgeOfTheWorld) {
  ann.heading = {1, 0};
  EXPECT_FALSE(annHitsBob()) << "it is off";
  run(ann, laserSlot, testTime - 999);
  EXPECT_TRUE(annHitsBob());
  bob.spot = spotAt(99'999, 10'367);
  EXPECT_TRUE(annHitsBob());
  bob.spot = spotAt(99'999, 10'368);
  EXPECT_FALSE(annHitsBob()) << "beside the beam";
  bob.spot = spotAt(9'600, 10'000);
  EXPECT_FALSE(annHitsBob()) << "behind its owner";
  bob.spot = spotAt(9'700, 10'000);
  EXPECT_TRUE(annHitsBob()) << "behind the owner's centre, but overlapping it";
}

TEST_F(WeaponsTest, ALaserNeedsADirection) {
  run(ann, laserSlot, testTime);
  bob.spot = ann.spot;
  EXPECT_FALSE(annHitsBob());
}

TEST_F(WeaponsTest, OnlyChargedSegmentsKill) {
  fly(ann, {spotAt(10'000, 10'000), spotAt(20'000, 10'000)}, testTime, false);
  fly(ann, {spotAt(30'000, 10'000)}, testTime, true);
  bob.spot = spotAt(15'000, 10'000);
  EXPECT_FALSE(annHitsBob());
  bob.spot = spotAt(25'000, 10'367);
  EXPECT_TRUE(annHitsBob());
  bob.spot = spotAt(25'000, 10'368);
  EXPECT_FALSE(annHitsBob());
}

TEST_F(WeaponsTest, ShieldsAndDeathProtect) {
  ann.heading = {1, 0};
  run(ann, laserSlot, testTime);
  run(bob, shieldSlot, testTime);
  EXPECT_FALSE(isVulnerable(bob, testTime));
  EXPECT_FALSE(annHitsBob());
  EXPECT_TRUE(isVulnerable(bob, testTime + 15'000)) << "a shield lasts for 15 seconds";
  bob = playerAt(2, 50'000, 10'000);
  bob.isAlive = false;
  EXPECT_FALSE(annHitsBob());
  bob.isAlive = true;
  ann.isAlive = false;
  EXPECT_FALSE(annHitsBob()) << "the dead do not shoot";
}

TEST_F(WeaponsTest, TwoCanHitEachOtherAtOnce) {
  ann.heading = {1, 0};
  bob.heading = {-1, 0};
  run(ann, laserSlot, testTime);
  run(bob, laserSlot, testTime);
  const auto hits = hitsNow(players, testTime);
  ASSERT_EQ(hits.size(), 2U);
  EXPECT_EQ(hits[0].winner, &ann);
  EXPECT_EQ(hits[1].winner, &bob);
}

TEST_F(WeaponsTest, AMoverIsHitAnywhereOnTheWay) {
  fly(ann, {spotAt(10'000, 10'000), spotAt(10'000, 20'000)}, testTime, true);
  bob.spot = spotAt(12'000, 15'000);
  EXPECT_TRUE(hitsOnTheWay(players, bob, {11'000, 15'000}, testTime).empty());
  const auto hits = hitsOnTheWay(players, bob, {8'000, 15'000}, testTime);
  ASSERT_EQ(hits.size(), 1U);
  EXPECT_EQ(hits[0].winner, &ann);
  EXPECT_EQ(hits[0].loser, &bob);
  bob.isAlive = false;
  EXPECT_TRUE(hitsOnTheWay(players, bob, {8'000, 15'000}, testTime).empty());
}

TEST_F(WeaponsTest, AMoverHitsOthersWhereTheyAre) {
  fly(ann, {spotAt(49'000, 9'000), spotAt(51'000, 11'000)}, testTime, true);
  const auto hits = hitsOnTheWay(players, ann, {49'000, 9'000}, testTime);
  ASSERT_EQ(hits.size(), 1U);
  EXPECT_EQ(hits[0].winner, &ann);
  EXPECT_EQ(hits[0].loser, &bob);
}

TEST_F(WeaponsTest, PulseReachesTheLivingInRange) {
  players.emplace(3, playerAt(3, 10'000, 14'500));
  players.emplace(4, playerAt(4, 10'000, 14'501));
  players.emplace(5, playerAt(5, 10'000, 10'001)).first->second.isAlive = false;
  EXPECT_EQ(playersInPulse(players, ann), (std::vector<Player*>{&players.at(3), &ann})) << "the owner comes last";
}

}  // namespace
}  // namespace kelvora::server
