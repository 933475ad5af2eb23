// The effects of charged tails, lasers and pulses.

#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

/// A hundred credits per second, so everybody is soon rich.
class CombatTest : public ArenaTest {
 protected:
  CombatTest() : ArenaTest(quietRulesWithIncome(6'000)) {}

  /// Ann is node 1 at (20000, 20000), Bob 2 at (40000, 40000), Cat 3 at (60000, 60000), each with 1010 credits.
  void begin() {
    login(ann, "Ann");
    login(bob, "Bob", "1");
    login(cat, "Cat", "2");
    pass(10'000);
    place(ann, 20'000, 20'000);
    place(bob, 40'000, 40'000);
    place(cat, 60'000, 60'000);
    pass(2'000);
    got.clear();
  }
  void place(ClientId client, int x, int y) { report(client, x, y); }
  void start(ClientId client, int item) {
    say(client, wire::msgBuyRequest, {std::to_string(item)});
    say(client, wire::msgActivateRequest, {std::to_string(item)});
    EXPECT_EQ(all(cat, wire::msgPowerupOn).back().at(1), std::to_string(item));
  }
  /// Each kill's winner and loser.
  std::vector<std::pair<std::string, std::string>> kills() {
    std::vector<std::pair<std::string, std::string>> found;
    for (const Fields& fields : all(cat, wire::msgTailCapture)) {
      EXPECT_EQ(fields.at(2), "-1000000") << "no vertex is there, so clients carry it out at once";
      EXPECT_EQ(fields.at(3), "-1000000");
      found.emplace_back(fields.at(0), fields.at(1));
    }
    return found;
  }
  using Kills = std::vector<std::pair<std::string, std::string>>;

  /// Ann lays a charged segment from (30000, 20000) to (30000, 30000), the first segment of this life.
  void layChargedSegment() {
    report(ann, 30'000, 20'000);
    pass(2'000);
    report(ann, 30'000, 20'001);
    start(ann, chargedTailSlot);
    report(ann, 30'000, 30'000);
  }
};

TEST_F(CombatTest, AChargedSegmentKillsPlayersWhoFlyThroughIt) {
  begin();
  report(bob, 29'000, 40'000);
  layChargedSegment();
  report(bob, 29'000, 25'000);
  EXPECT_EQ(kills(), Kills{}) << "1000 beside it";
  report(bob, 31'000, 25'000);
  EXPECT_EQ(kills(), (Kills{{"1", "2"}})) << "right across, from one side to the other";
  EXPECT_FALSE(view(bob).isAlive);
  EXPECT_EQ(view(ann).kills, 1);
  EXPECT_EQ(view(ann).roundCaptures, 1);
}

TEST_F(CombatTest, HitsReachExactlyToTheBallsEdge) {
  begin();
  layChargedSegment();
  report(bob, 30'400, 35'000);
  say(bob, wire::msgPositionReport, {"30367.75", "25000"});
  EXPECT_EQ(kills(), Kills{}) << "the radius is 367.5";
  say(bob, wire::msgPositionReport, {"30367.5", "25000"});
  EXPECT_EQ(kills(), (Kills{{"1", "2"}}));
}

TEST_F(CombatTest, LayingItOverSomebodyKillsThem) {
  begin();
  report(bob, 30'300, 25'000);
  layChargedSegment();
  EXPECT_EQ(kills(), (Kills{{"1", "2"}}));
}

TEST_F(CombatTest, EarlierSegmentsAreNotCharged) {
  begin();
  report(ann, 30'000, 20'000);
  report(ann, 30'000, 30'000);
  start(ann, chargedTailSlot);
  report(bob, 29'000, 25'000);
  report(bob, 31'000, 25'000);
  EXPECT_EQ(kills(), Kills{});
}

TEST_F(CombatTest, SegmentsStayChargedAfterItsEnd) {
  begin();
  report(ann, 30'000, 20'000);
  start(ann, chargedTailSlot);
  pass(4'990);
  report(ann, 30'000, 20'001);
  report(ann, 30'000, 30'000);
  pass(1'000);
  ASSERT_FALSE(view(ann).isRunning[chargedTailSlot]);
  report(bob, 29'000, 25'000);
  report(bob, 31'000, 25'000);
  EXPECT_EQ(kills(), (Kills{{"1", "2"}}));
}

TEST_F(CombatTest, AShieldProtectsAsLongAsItLasts) {
  begin();
  start(bob, shieldSlot);
  pass(12'000);
  report(bob, 30'000, 25'000);
  layChargedSegment();
  EXPECT_EQ(kills(), Kills{});
  pass(999);
  EXPECT_EQ(kills(), Kills{}) << "14.999 seconds";
  pass(1);
  EXPECT_EQ(kills(), (Kills{{"1", "2"}})) << "it is over, and Bob is still on the tail";
}

TEST_F(CombatTest, ItsOwnerFliesThroughItUnharmed) {
  begin();
  layChargedSegment();
  report(ann, 29'000, 30'000);
  report(ann, 29'000, 25'000);
  report(ann, 31'000, 25'000);
  EXPECT_EQ(kills(), Kills{});
}

TEST_F(CombatTest, ADeadPlayersTailIsHarmless) {
  begin();
  layChargedSegment();
  start(cat, shieldSlot);
  circle(cat, 30'000, 30'000);
  ASSERT_FALSE(view(ann).isAlive);
  got.clear();
  report(bob, 29'000, 25'000);
  report(bob, 31'000, 25'000);
  EXPECT_EQ(kills(), Kills{});
}

TEST_F(CombatTest, TwoMayKillEachOtherAtTheSameMoment) {
  begin();
  report(ann, 30'000, 20'000);
  report(bob, 40'000, 20'000);
  pass(2'000);
  report(bob, 40'000, 20'001);
  start(bob, chargedTailSlot);
  report(bob, 40'000, 30'000);
  start(ann, chargedTailSlot);
  report(ann, 29'999, 20'000);
  // Ann's segment ends on Bob's ball and crosses his tail.
  report(ann, 40'300, 30'000);
  EXPECT_EQ(kills(), (Kills{{"2", "1"}, {"1", "2"}}));
  EXPECT_EQ(view(ann).kills, 1);
  EXPECT_EQ(view(bob).kills, 1);
}

TEST_F(CombatTest, ALaserReachesFromTheBallAlongItsLastMovementToTheEdge) {
  begin();
  report(ann, 20'000, 50'000);
  report(ann, 21'000, 50'000);
  report(bob, 99'000, 50'300);
  report(cat, 10'000, 50'000);
  start(ann, laserSlot);
  pass(1);
  EXPECT_EQ(kills(), (Kills{{"1", "2"}})) << "Cat is behind";
}

TEST_F(CombatTest, ALaserHitsAtAnyTimeWhileItRuns) {
  begin();
  report(ann, 20'000, 50'000);
  report(ann, 21'000, 50'000);
  report(bob, 50'000, 48'000);
  report(cat, 50'000, 49'632);
  start(ann, laserSlot);
  pass(990);
  EXPECT_EQ(kills(), Kills{}) << "Cat is 368 from the beam, and the ball's radius is 367.5";
  report(bob, 50'000, 52'000);
  EXPECT_EQ(kills(), (Kills{{"1", "2"}})) << "flown through it";
  pass(10);
  report(cat, 50'000, 50'000);
  EXPECT_EQ(kills().size(), 1U) << "a second is over";
}

TEST_F(CombatTest, ALaserTurnsWithItsPlayer) {
  begin();
  report(ann, 20'000, 50'000);
  report(ann, 20'000, 51'000);
  report(bob, 50'000, 51'000);
  start(ann, laserSlot);
  pass(100);
  EXPECT_EQ(kills(), Kills{});
  report(ann, 20'100, 51'000);
  EXPECT_EQ(kills(), (Kills{{"1", "2"}}));
}

TEST_F(CombatTest, PlayersWithoutAMovementHaveNoBeam) {
  begin();
  arena.disconnected(ann);
  login(ann, "Ann");
  pass(5'000);
  start(ann, laserSlot);
  pass(500);
  EXPECT_EQ(kills(), Kills{});
}

TEST_F(CombatTest, AShieldStopsALaser) {
  begin();
  report(ann, 20'000, 50'000);
  report(ann, 21'000, 50'000);
  report(bob, 50'000, 50'000);
  start(bob, shieldSlot);
  start(ann, laserSlot);
  pass(500);
  report(ann, 21'100, 50'000);
  EXPECT_EQ(kills(), Kills{});
}

TEST_F(CombatTest, PulseKillsEverybodyInRangeAndItsOwner) {
  begin();
  report(ann, 50'000, 50'000);
  report(bob, 50'000, 54'500);
  report(cat, 54'501, 50'000);
  start(ann, pulseSlot);
  EXPECT_EQ(kills(), (Kills{{"1", "2"}, {"1", "1"}})) << "4500 is in range, 4501 is not";
  EXPECT_EQ(view(ann).kills, 2) << "clients also count the killer's own death";
  EXPECT_EQ(view(ann).roundCaptures, 1);
  EXPECT_FALSE(view(ann).isAlive);
  EXPECT_TRUE(view(cat).isAlive);
}

TEST_F(CombatTest, OwnDeathEarnsNothing) {
  begin();
  const auto before = view(ann).funds;
  start(ann, pulseSlot);
  EXPECT_EQ(kills(), (Kills{{"1", "1"}}));
  EXPECT_EQ(view(ann).funds, before - 70);
}

TEST_F(CombatTest, PulseBreaksEveryShieldInRangeIncludingTheOwners) {
  begin();
  report(ann, 50'000, 50'000);
  report(bob, 51'000, 50'000);
  start(ann, shieldSlot);
  start(bob, shieldSlot);
  start(cat, shieldSlot);
  start(ann, pulseSlot);
  EXPECT_EQ(kills(), Kills{});
  EXPECT_EQ(all(cat, wire::msgPowerupOff), (std::vector<Fields>{{"2", "0"}, {"1", "0"}})) << "Cat is far away";
  EXPECT_FALSE(view(ann).isRunning[shieldSlot]);
  EXPECT_FALSE(view(bob).isRunning[shieldSlot]);
  EXPECT_TRUE(view(cat).isRunning[shieldSlot]);
  start(ann, pulseSlot);
  EXPECT_EQ(kills(), (Kills{{"1", "2"}, {"1", "1"}}));
}

TEST_F(CombatTest, EarlyEndAllowsAnotherActivation) {
  begin();
  start(ann, shieldSlot);
  start(ann, pulseSlot);
  EXPECT_EQ(all(cat, wire::msgPowerupOff), (std::vector<Fields>{{"1", "0"}}));
  start(ann, shieldSlot);
  EXPECT_TRUE(view(ann).isRunning[shieldSlot]);
}

TEST_F(CombatTest, NaturalEndsAreNotAnnounced) {
  begin();
  for (int item = 0; item < pulseSlot; ++item) start(ann, item);
  pass(20'000);
  EXPECT_TRUE(all(cat, wire::msgPowerupOff).empty());
}

TEST_F(CombatTest, WeaponDeathsWaitForNoVertex) {
  begin();
  start(ann, pulseSlot);
  arena.disconnected(ann);
  EXPECT_EQ(all(cat, wire::msgPlayerLeft), (std::vector<Fields>{{"1"}})) << "at once";
}

TEST_F(CombatTest, KillsStayWithinTheirSixteenBits) {
  begin();
  login(4, "Dan", "3");
  login(5, "Eve", "4");
  login(6, "Flo", "5");
  for (ClientId client = 1; client <= 6; ++client) report(client, 50'000, 50'000);
  for (int i = 0; i < 5'462; ++i) {  // six at once
    say(ann, wire::msgBuyRequest, {"5"});
    say(ann, wire::msgActivateRequest, {"5"});
    pass(3'000);
    for (ClientId client = 1; client <= 6; ++client) say(client, wire::msgSpawnRequest, {""});
    pass(300);  // to earn the next pulse
    got.clear();
    if (i == 5'460) {
      EXPECT_EQ(view(ann).kills, 32'766);
    }
  }
  EXPECT_EQ(view(ann).kills, 32'767);
}

}  // namespace
}  // namespace kelvora::server
