#include "server/bots/mind.h"

#include <gtest/gtest.h>

#include <set>

#include "server/bots/flight.h"
#include "server/bots/sight.h"

namespace kelvora::server {
namespace {

/// A bot in the middle of the world, with an opponent somewhere.
class BotMind : public testing::Test {
 protected:
  BotMind() {
    view.now = 10'000;
    view.isAlive = true;
    view.position = {50'000, 50'000};
  }
  Seen& opponent(Point position, Point velocity = {}) {
    view.others.push_back({.node = static_cast<std::int16_t>(view.others.size() + 2),
                           .isAlive = true,
                           .position = position,
                           .velocity = velocity});
    return view.others.back();
  }
  /// The powerups that it activates within this time, in order. Activated ones run.
  std::vector<int> uses(Mind& mind, int seconds) {
    std::vector<int> used;
    for (int tick = 0; tick < 25 * seconds; ++tick) {
      view.now += 40;
      if (const auto item = mind.think(view).powerup) {
        const auto slot = static_cast<std::size_t>(*item);
        EXPECT_GT(view.stock[slot], 0);
        EXPECT_FALSE(view.isRunning[slot]);
        --view.stock[slot];
        view.isRunning[slot] = powerupTable[slot].runs;
        used.push_back(*item);
      }
    }
    return used;
  }
  Intent later(Mind& mind, int ticks) {
    Intent intent;
    for (int i = 0; i < ticks; ++i) {
      view.now += 40;
      intent = mind.think(view);
    }
    return intent;
  }

  BotView view;
  Mind hard{skillOf(SkillLevel::hard), 1};
  Mind easy{skillOf(SkillLevel::easy), 1};
};

TEST_F(BotMind, SameSeedGivesTheSameDecisions) {
  opponent({60'000, 55'000}, {10, 5});
  Mind twin(skillOf(SkillLevel::hard), 1);
  for (int i = 0; i < 50; ++i) {
    const Intent first = later(hard, 1);
    view.now -= 40;
    const Intent second = later(twin, 1);
    EXPECT_EQ(first.angle, second.angle);
    EXPECT_EQ(first.throttle, second.throttle);
  }
}

TEST_F(BotMind, FliesToItsPreyAtItsOwnSpeed) {
  opponent({90'000, 50'000});
  EXPECT_NEAR(later(hard, 25).angle, 0, 0.2);
  EXPECT_EQ(later(hard, 1).throttle, 1);
  later(easy, 25);
  EXPECT_EQ(later(easy, 1).throttle, 0.6);
}

TEST_F(BotMind, LeadsAMovingOpponent) {
  // It crosses downwards, 40000 to the right. A bot that aims at its current position flies straight to the right.
  opponent({90'000, 30'000}, {0, 20});
  const double angle = later(hard, 25).angle;
  EXPECT_GT(angle, -0.25) << "ahead of where it is, at -0.46";
}

TEST_F(BotMind, TurnsNoFasterThanItsHand) {
  opponent({90'000, 50'000});
  double last = later(easy, 50).angle;
  view.others[0].position = {10'000, 50'000};
  for (int i = 0; i < 25; ++i) {
    const double angle = later(easy, 1).angle;
    EXPECT_LE(std::fabs(wrapped(angle - last)), 6 * 0.04 + 1e-9) << "six radians per second";
    last = angle;
  }
  EXPECT_LT(std::cos(last), -0.5) << "but it gets there";
}

TEST_F(BotMind, WithNobodyAliveItWanders) {
  opponent({60'000, 50'000}).isAlive = false;
  const Intent intent = later(hard, 5);
  EXPECT_EQ(intent.throttle, 0.5);
}

TEST_F(BotMind, ClosesALoopAroundAnOpponent) {
  // The bot's tail is three sides of a square of 4000, and the opponent rests in its middle.
  std::vector<Point> tail;
  for (int i = 0; i < 4; ++i) tail.push_back({46'000, 54'000 - 1'000.0 * i});
  for (int i = 0; i < 4; ++i) tail.push_back({46'000 + 1'000.0 * i, 50'000});
  for (int i = 0; i < 4; ++i) tail.push_back({50'000, 50'000 + 1'000.0 * i});
  view.tail = tail;
  view.position = {50'000, 53'500};
  opponent({48'000, 52'000});
  const Intent intent = later(hard, 8);
  EXPECT_LT(std::cos(intent.angle), -0.9) << "to the left";
}

/// How far a resting bot moves, in two seconds, from somebody who flies circles of 2500 around its initial position.
double escape(double alertness) {
  Skill skill = skillOf(SkillLevel::hard);
  skill.alertness = alertness;
  skill.restThrottle = 0.01;
  skill.triumph = 60'000;
  Mind mind(skill, 1);
  mind.triumph(0);
  constexpr Point place = {50'000, 50'000};
  constexpr double turn = 1'200 * 0.75 / 2'500;  // in 40 ms, averaged over all directions
  Flight flight({50'000, 50'000});
  flight.setBrakes(false);
  Sight sight;
  PlayerView self;
  self.client = 1;
  self.node = 1;
  self.isAlive = true;
  PlayerView hunter;
  hunter.client = 2;
  hunter.node = 2;
  hunter.isAlive = true;
  for (int i = 0; i < 50; ++i) {
    self.position = flight.point();
    hunter.position = place + towards(i * turn) * 2'500;
    hunter.tail.push_back(hunter.position);
    const Millis now = 1'000 + 40 * i;
    sight.add({self, hunter}, now);
    const Intent intent = mind.think(sight.viewOf(self, skill.reaction, now));
    for (int frame = 0; frame < 4; ++frame) flight.step(intent.angle, intent.throttle, true, false);
  }
  return length(flight.point() - place);
}

TEST_F(BotMind, FleesFromALoopThatCloses) {
  EXPECT_LT(escape(0), 2'500) << "a bot that doesn't notice is caught";
  EXPECT_GT(escape(1), 2'500);
}

TEST_F(BotMind, AvoidsChargedTails) {
  // It crosses the way to its owner, 2500 ahead.
  std::vector<Point> tail;
  for (int i = 0; i <= 6; ++i) tail.push_back({52'500, 47'000 + 1'000.0 * i});
  Seen& other = opponent({60'000, 50'000});
  other.tail = tail;
  other.isTailCharged = true;
  const Point way = towards(later(hard, 10).angle);
  EXPECT_FALSE(segmentsCross(view.position, view.position + way * 3'000, tail.front(), tail.back()));
  view.isRunning[shieldSlot] = true;
  Mind shielded(skillOf(SkillLevel::hard), 2);
  EXPECT_GT(std::cos(later(shielded, 10).angle), 0.9) << "which is harmless to a shield";
}

TEST_F(BotMind, ShieldComesBeforeAPulse) {
  view.stock[shieldSlot] = 1;
  view.stock[pulseSlot] = 1;
  opponent({51'000, 52'000});
  EXPECT_EQ(uses(hard, 10), (std::vector<int>{shieldSlot, pulseSlot}));
}

TEST_F(BotMind, KeepsAPulseWithoutAShield) {
  view.stock[pulseSlot] = 1;
  opponent({51'000, 52'000});
  EXPECT_TRUE(uses(hard, 10).empty());
}

TEST_F(BotMind, APulseIsNotWastedOnShields) {
  view.stock[pulseSlot] = 1;
  view.isRunning[shieldSlot] = true;
  opponent({51'000, 52'000}).isRunning[shieldSlot] = true;
  EXPECT_TRUE(uses(hard, 10).empty());
}

TEST_F(BotMind, RaisesAShieldNearAChargedTail) {
  view.stock[shieldSlot] = 1;
  Seen& other = opponent({55'000, 52'000});
  EXPECT_TRUE(uses(hard, 10).empty()) << "there is nothing to fear";
  other.isTailCharged = true;
  EXPECT_EQ(uses(hard, 1), (std::vector<int>{shieldSlot}));
}

TEST_F(BotMind, FiresALaserOnlyInLine) {
  view.stock[laserSlot] = 1;
  opponent({65'000, 50'000});
  EXPECT_EQ(uses(hard, 4), (std::vector<int>{laserSlot})) << "it flies towards the opponent";
  view.stock[laserSlot] = 1;
  view.isRunning[laserSlot] = false;
  view.others[0].position = {95'000, 50'000};
  EXPECT_TRUE(uses(hard, 4).empty()) << "too far";
}

TEST_F(BotMind, EasyBotsUseOnlyTheTurbo) {
  view.stock.fill(1);
  opponent({55'000, 50'000}).isTailCharged = true;
  for (const int item : uses(easy, 20)) EXPECT_EQ(item, turboSlot);
}

TEST_F(BotMind, TheDeadActivateNothing) {
  view.stock.fill(1);
  view.isAlive = false;
  opponent({51'000, 52'000});
  EXPECT_TRUE(uses(hard, 20).empty());
}

TEST_F(BotMind, BuysAffordableAndUsefulItems) {
  view.funds = 9;
  EXPECT_FALSE(hard.wantsToBuy(view));
  view.funds = 10;
  EXPECT_EQ(hard.wantsToBuy(view), turboSlot);
  view.stock[turboSlot] = 1;
  EXPECT_FALSE(hard.wantsToBuy(view));
  view.funds = 1'000;
  EXPECT_FALSE(easy.wantsToBuy(view)) << "an easy bot has its turbo";
  std::set<int> wishes;
  for (int i = 0; i < 200; ++i) wishes.insert(*hard.wantsToBuy(view));
  EXPECT_EQ(wishes, (std::set<int>{shieldSlot, chargedTailSlot, extendedTailSlot, laserSlot})) << "a shield first";
  view.stock[shieldSlot] = 1;
  for (int i = 0; i < 200; ++i) wishes.insert(*hard.wantsToBuy(view));
  EXPECT_TRUE(wishes.contains(pulseSlot));
}

}  // namespace
}  // namespace kelvora::server
