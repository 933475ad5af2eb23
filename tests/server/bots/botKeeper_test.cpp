#include "server/bots/botKeeper.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <set>
#include <string>

#include "generated/version.h"
#include "protocol/messages.h"
#include "server/arena/names.h"
#include "tests/support/wireMessage.h"

namespace kelvora::server {
namespace {

/// An arena with a bot keeper, and people who only come and go.
class BotKeeperTest : public testing::Test, private ArenaOutput {
 protected:
  static constexpr ClientId ann = 1;
  static constexpr ClientId bob = 2;

  void keep(int count, SkillLevel skill = SkillLevel::mixed, const std::string& password = "") {
    arena.emplace(static_cast<ArenaOutput&>(*this), KELVORA_VERSION, password, 1);
    keeper.emplace(*arena, BotSettings{count, skill}, password, KELVORA_VERSION, 1);
  }
  void ask(ClientId client, const std::string& colour, const std::string& name = "Ann",
           const std::string& password = "") {
    arena->connected(client, now);
    arena->received(client, textOf(wire::msgLogin, {name, password, colour, KELVORA_VERSION}), now);
  }
  void pass(Millis time) {
    for (const Millis end = now + time; now < end;) {
      now += 40;
      arena->tick(now);
      keeper->tick(now);
      most = std::max(most, arena->playerCount());
    }
  }
  std::vector<PlayerView> bots() const {
    std::vector<PlayerView> found = arena->players(now);
    std::erase_if(found, [](const PlayerView& player) { return !isBot(player.client); });
    return found;
  }
  bool isIn(ClientId client) const {
    return std::ranges::any_of(arena->players(now), [&](const PlayerView& player) { return player.client == client; });
  }
  std::int16_t colourOf(ClientId client) const {
    for (const PlayerView& player : arena->players(now)) {
      if (player.client == client) return player.colour;
    }
    return -1;
  }

  Millis now = 5'000;
  std::size_t most = 0;
  std::map<ClientId, int> sent;
  std::optional<Arena> arena;
  std::optional<BotKeeper> keeper;

 private:
  void send(ClientId client, const std::string& frame) override {
    ++sent[client];
    if (isBot(client)) keeper->hear(client, frame, now);
  }
  void hangUp(ClientId client) override { keeper->hangUp(client); }
  void log(const std::string&) override {}
};

TEST_F(BotKeeperTest, WithoutPeopleThereAreNoBots) {
  keep(3);
  pass(10'000);
  EXPECT_EQ(arena->playerCount(), 0U);
  EXPECT_TRUE(sent.empty());
}

TEST_F(BotKeeperTest, BotsJoinSoonAfterTheFirstPerson) {
  keep(3);
  ask(ann, "0");
  pass(5'000);
  EXPECT_EQ(bots().size(), 3U);
  EXPECT_EQ(keeper->count(), 3U);
  pass(20'000);
  EXPECT_EQ(bots().size(), 3U) << "and no more of them";
}

TEST_F(BotKeeperTest, BotsDoNotJoinAllAtOnce) {
  keep(5);
  ask(ann, "0");
  pass(280);
  EXPECT_LE(bots().size(), 1U);
}

TEST_F(BotKeeperTest, BotsLeaveWithTheLastPerson) {
  keep(3);
  ask(ann, "0");
  ask(bob, "0", "Bob");
  pass(8'000);
  arena->disconnected(ann);
  pass(4'000);
  EXPECT_EQ(bots().size(), 3U);
  arena->disconnected(bob);
  pass(40);
  EXPECT_EQ(arena->playerCount(), 0U);
}

TEST_F(BotKeeperTest, BotsSendNothingWithoutPeople) {
  keep(5);
  ask(ann, "0");
  pass(8'000);
  arena->disconnected(ann);
  pass(80);
  sent.clear();
  pass(60'000);
  EXPECT_TRUE(sent.empty());
  ask(ann, "0");
  pass(8'000);
  EXPECT_EQ(bots().size(), 5U) << "and they return";
}

TEST_F(BotKeeperTest, BotsKnowThePassword) {
  keep(2, SkillLevel::easy, "sesame");
  ask(ann, "0", "Ann", "sesame");
  pass(5'000);
  EXPECT_EQ(bots().size(), 2U);
}

TEST_F(BotKeeperTest, NamesDifferFromEachOtherAndFromPeoples) {
  keep(5);
  ask(ann, "0", "quillon");
  std::set<std::string> names;
  for (int visit = 0; visit < 20; ++visit) {
    pass(8'000);
    ASSERT_EQ(bots().size(), 5U);
    std::set<std::string> together;
    for (const PlayerView& bot : bots()) together.insert(bot.name);
    EXPECT_EQ(together.size(), 5U);
    EXPECT_FALSE(together.contains("Quillon"));
    names.merge(together);
    arena->disconnected(ann);
    pass(80);
    ask(ann, "0", "quillon");
  }
  EXPECT_GT(names.size(), 10U);
  for (const std::string& name : names) EXPECT_LE(name.size(), maxNameLength);
}

TEST_F(BotKeeperTest, PeopleReplaceBots) {
  keep(5);
  ask(ann, "0");
  pass(8'000);
  EXPECT_EQ(arena->playerCount(), 6U);
  for (ClientId person = 2; person <= 6; ++person) {
    ask(person, std::to_string(person - 1), "P" + std::to_string(person));
    pass(8'000);
    EXPECT_TRUE(isIn(person)) << person;
    EXPECT_EQ(colourOf(person), static_cast<std::int16_t>(person - 1)) << "the wanted colour";
    EXPECT_EQ(bots().size(), 6U - person);
  }
  EXPECT_EQ(arena->playerCount(), 6U);
  for (ClientId person = 3; person <= 6; ++person) arena->disconnected(person);
  pass(12'000);
  EXPECT_EQ(bots().size(), 4U) << "and give them back";
  EXPECT_LE(most, 6U);
}

TEST_F(BotKeeperTest, BotGivesUpItsColourAndReturnsWithAnother) {
  keep(3);
  ask(ann, "0");
  pass(8'000);
  const PlayerColour colour = bots().front().colour;
  ask(bob, std::to_string(colour), "Bob");
  pass(3'000);
  EXPECT_EQ(colourOf(bob), colour);
  pass(8'000);
  EXPECT_EQ(bots().size(), 3U);
  for (const PlayerView& bot : bots()) EXPECT_NE(bot.colour, colour);
}

TEST_F(BotKeeperTest, MixedSkillHasAllLevels) {
  // Levels are recognised by their pace: an easy bot flies at most 720 per report, a normal one 840, a hard one 1200.
  keep(5, SkillLevel::mixed);
  ask(ann, "0");
  pass(8'000);
  std::map<ClientId, double> fastest;
  std::map<ClientId, Point> last;
  std::map<ClientId, int> plain;  // ticks since it was a ghost or had a turbo, because it may still be slowing down
  for (int tick = 0; tick < 1'500; ++tick) {
    pass(40);
    for (const PlayerView& bot : bots()) {
      plain[bot.client] = bot.isAlive && !bot.isRunning[turboSlot] ? plain[bot.client] + 1 : 0;
      if (plain[bot.client] > 75) {
        const double step = flightLength(bot.position - last[bot.client]);
        const Point there = bot.position;
        const bool isByTheEdge = there.x < 3'000 || there.x > 97'000 || there.y < 3'000 || there.y > 97'000;
        if (!isByTheEdge) fastest[bot.client] = std::max(fastest[bot.client], step);
      }
      last[bot.client] = bot.position;
    }
  }
  std::multiset<double> speeds;
  for (const auto& [client, speed] : fastest) speeds.insert(speed);
  const std::array expected = {720.0, 720.0, 840.0, 840.0, 1'200.0};
  ASSERT_EQ(speeds.size(), expected.size());
  auto speed = speeds.begin();
  for (const double level : expected) EXPECT_NEAR(*speed++, level, 1);
}

TEST_F(BotKeeperTest, FrequentTicksDoNotSpeedUpBots) {
  keep(1, SkillLevel::hard);
  ask(ann, "0");
  pass(5'000);
  const int before = sent[ann];
  for (int i = 0; i < 1'000; ++i) {
    now += 1;
    keeper->tick(now);
  }
  // A second has 25 steps. A chat line or a purchase may come in addition.
  EXPECT_GE(sent[ann] - before, 20);
  EXPECT_LE(sent[ann] - before, 30);
}

TEST_F(BotKeeperTest, MissedTimeIsNotMadeUpFor) {
  keep(1, SkillLevel::hard);
  ask(ann, "0");
  pass(5'000);
  const int before = sent[ann];
  now += 60'000;
  keeper->tick(now);
  EXPECT_LE(sent[ann] - before, 3);
}

TEST_F(BotKeeperTest, DisconnectedBotReturns) {
  keep(1);
  ask(ann, "0");
  pass(5'000);
  ASSERT_EQ(bots().size(), 1U);
  const ClientId client = bots().front().client;
  arena->disconnected(client);
  keeper->hangUp(client);
  pass(40);
  EXPECT_TRUE(bots().empty());
  pass(8'000);
  EXPECT_EQ(bots().size(), 1U);
}

}  // namespace
}  // namespace kelvora::server
