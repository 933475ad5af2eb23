// Scripted players fight by the rules of the server, and its messages to each of them are replayed to a real client.
// Every client must end up with the server's decisions.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "base/search.h"
#include "base/text.h"
#include "generated/version.h"
#include "protocol/messages.h"
#include "server/arena/arena.h"
#include "tests/match/replay.h"
#include "tests/support/shortTests.h"
#include "tests/support/wireMessage.h"

namespace kelvora {
namespace {

using server::ClientId;
using server::PlayerView;

constexpr Millis reportInterval = 40;

/// Circles around an opponent for a while and then around the next, buys and fires what it can, and requests a respawn
/// whenever it is dead.
struct Fighter {
  ClientId client = 0;
  bool isIn = false;  ///< a login may have to wait until somebody has left
  double x = 0;
  double y = 0;
  double angle = 0;
  double radius = 3'000;
  ClientId prey = 0;
  Millis changesAt = 0;
  Millis asksAt = 0;
};

class Melee : private server::ArenaOutput {
 public:
  Melee(unsigned seed, const server::ArenaRules& rules)
      : random_(seed), arena_(*this, KELVORA_VERSION, "", seed, rules) {}

  Recording recording;
  int captures = 0;
  int instantKills = 0;
  int rounds = 0;
  int refusals = 0;
  int lingered = 0;

  std::vector<PlayerView> players() { return arena_.players(now_); }

  void join() {
    const ClientId client = ++lastClient_;
    arena_.connected(client, now_);
    say(client, wire::msgLogin, {"P" + std::to_string(client), "", "0", KELVORA_VERSION});
    fighters_.push_back({.client = client});
  }
  /// Prefers a dead player, because a capture of a living one may be pending. The first two stay, because clients take
  /// the first known player for an unknown one.
  void leave() {
    if (fighters_.size() < 3) return;
    std::size_t index = draw(2, static_cast<int>(fighters_.size()) - 1);
    const auto views = players();
    for (std::size_t i = 2; i < fighters_.size(); ++i) {
      const PlayerView* player = findBy(views, &PlayerView::client, fighters_[i].client);
      if (player && !player->isAlive) index = i;
    }
    const int told = lefts_;
    arena_.disconnected(fighters_[index].client);
    lingered += told == lefts_ ? 1 : 0;
    fighters_.erase(fighters_.begin() + static_cast<std::ptrdiff_t>(index));
  }

  void report(ClientId client, int x, int y) {
    say(client, wire::msgPositionReport, {std::to_string(x), std::to_string(y)});
  }
  void disconnect(ClientId client) {
    arena_.disconnected(client);
    std::erase_if(fighters_, [&](const Fighter& fighter) { return fighter.client == client; });
  }
  void tick() {
    arena_.tick(now_);
    now_ += reportInterval;
  }

  void pass(Millis time, double leavesAMinute) {
    for (const Millis end = now_ + time; now_ < end; now_ += reportInterval) {
      const std::vector<PlayerView> views = players();
      for (Fighter& fighter : fighters_) act(fighter, views);
      arena_.tick(now_);
      if (chance(leavesAMinute / 1'500)) leave();
      if (fighters_.size() < 6 && chance(0.02)) join();
    }
  }

  /// Nobody acts until all departures have been announced.
  void settle() {
    for (const Millis end = now_ + 15'000; now_ < end;) tick();
  }

 private:
  std::size_t draw(int least, int most) {
    return static_cast<std::size_t>(std::uniform_int_distribution(least, most)(random_));
  }
  bool chance(double share) { return std::bernoulli_distribution(share)(random_); }

  void say(ClientId client, std::int16_t id, const std::vector<std::string>& fields) {
    arena_.received(client, textOf(id, fields), now_);
  }

  void act(Fighter& fighter, const std::vector<PlayerView>& views) {
    const PlayerView* self = findBy(views, &PlayerView::client, fighter.client);
    if (!self) return;
    if (!fighter.isIn) {
      fighter.isIn = true;
      fighter.x = self->position.x;
      fighter.y = self->position.y;
    }
    if (now_ >= fighter.changesAt) {
      fighter.changesAt = now_ + static_cast<Millis>(draw(1'000, 8'000));
      fighter.prey = views[draw(0, static_cast<int>(views.size()) - 1)].client;
      fighter.radius = static_cast<double>(draw(500, 5'000));
    }
    fly(fighter, *self, views);
    if (!self->isAlive && now_ >= fighter.asksAt) {
      fighter.asksAt = now_ + 1'500;
      say(fighter.client, wire::msgSpawnRequest, {""});
    }
    if (chance(0.02)) say(fighter.client, wire::msgBuyRequest, {std::to_string(draw(0, 5))});
    if (chance(0.005)) say(fighter.client, wire::msgSellRequest, {std::to_string(draw(0, 5))});
    const auto item = draw(0, 5);
    if (self->stock[item] > 0 && chance(0.1)) say(fighter.client, wire::msgActivateRequest, {std::to_string(item)});
  }

  void fly(Fighter& fighter, const PlayerView& self, const std::vector<PlayerView>& views) {
    const PlayerView* prey = findBy(views, &PlayerView::client, fighter.prey);
    double stepLeft = 1'200;  // both axes combined, in four frames
    if (self.isRunning[turboSlot]) stepLeft *= 3;
    double goalX = fighter.x;
    double goalY = fighter.y;
    if (!prey || prey->client == fighter.client) {
      if (chance(0.5)) return;  // stands still
      stepLeft /= 4;
      goalX += 1'000 * std::cos(fighter.angle);
      goalY += 1'000 * std::sin(fighter.angle);
      fighter.angle += 0.05;
    } else {
      fighter.angle += 0.8 * stepLeft / (1.3 * fighter.radius);
      goalX = prey->position.x + fighter.radius * std::cos(fighter.angle);
      goalY = prey->position.y + fighter.radius * std::sin(fighter.angle);
    }
    const double wayX = goalX - fighter.x;
    const double wayY = goalY - fighter.y;
    const double part = std::min(1.0, stepLeft / std::max(1.0, std::abs(wayX) + std::abs(wayY)));
    fighter.x = std::clamp(fighter.x + part * wayX, 0.0, 100'000.0);
    fighter.y = std::clamp(fighter.y + part * wayY, 0.0, 100'000.0);
    say(fighter.client, wire::msgPositionReport,
        {numberText(static_cast<float>(fighter.x)), numberText(static_cast<float>(fighter.y))});
  }

  void send(ClientId client, const std::string& frame) override {
    recording.add(client, now_, frame);
    const int id = messageOf(frame).id;
    if (id == wire::msgPlayerLeft) ++lefts_;
    if (fighters_.empty() || client != fighters_.front().client) return;
    if (id == wire::msgTailCapture) ++(frame.find("-1000000") == std::string::npos ? captures : instantKills);
    if (id == wire::msgRoundOver) ++rounds;
    if (id == wire::msgSpawnDenied) ++refusals;
  }
  /// A login may wait in vain for somebody to be gone.
  void hangUp(ClientId client) override {
    const auto isRefused = [&](const Fighter& fighter) { return fighter.client == client && !fighter.isIn; };
    EXPECT_EQ(std::erase_if(fighters_, isRefused), 1U) << "client " << client << " was hung up on";
  }
  void log(const std::string&) override {}

  std::mt19937 random_;
  Millis now_ = 1'000;
  int lefts_ = 0;
  ClientId lastClient_ = 0;
  std::vector<Fighter> fighters_;
  server::Arena arena_;
};

// No wait, so that only a pending capture delays a loser's respawn.
const server::ArenaRules lively{
    .roundMs = 50'000, .captureGoal = 12, .intermissionMs = 5'000, .respawnWaitMs = 0, .incomePerMinute = 120};

class MeleeReplay : public testing::TestWithParam<unsigned> {};

TEST_P(MeleeReplay, EveryClientSeesTheServersDecisions) {
  Melee melee(GetParam(), lively);
  for (int i = 0; i < 6; ++i) melee.join();
  melee.pass(110'000, 10);
  melee.settle();
  EXPECT_GT(melee.captures, 20);
  EXPECT_GT(melee.instantKills, 5);
  EXPECT_GE(melee.rounds, 2);
  EXPECT_GE(melee.lingered, 3);
  EXPECT_EQ(melee.refusals, 0);
  const auto players = melee.players();
  ASSERT_GE(players.size(), 4U);
  const ReplayLine lines[] = {{},
                              {.latencyFrames = 1},
                              {.latencyFrames = 10, .jitterFrames = 20},
                              {.frameMs = 30},
                              {.latencyFrames = 20},
                              {.latencyFrames = 2, .frameMs = 60}};
  for (std::size_t i = 0; i < players.size(); ++i) {
    expectTrueReplay(melee.recording, players[i].client, players, lines[i % std::size(lines)]);
  }
}

/// One of three players circles the last one. Then somebody leaves at once.
void expectTruthWithout(ClientId leaver, ClientId winner) {
  SCOPED_TRACE("leaver " + std::to_string(leaver));
  server::ArenaRules rules = lively;
  rules.speedFactor = 0;
  Melee melee(1, rules);
  for (int i = 0; i < 3; ++i) melee.join();
  melee.report(3 - winner, 70'000, 70'000);
  melee.report(3, 50'000, 50'000);
  for (const auto& [x, y] :
       {std::pair{48'000, 49'000}, {51'000, 49'000}, {51'000, 51'000}, {49'000, 51'000}, {49'000, 48'000}}) {
    melee.report(winner, x, y);
    melee.tick();
  }
  EXPECT_EQ(melee.captures, 1);
  melee.disconnect(leaver);
  melee.settle();
  const auto players = melee.players();
  ASSERT_EQ(players.size(), 2U);
  for (const PlayerView& player : players) expectTrueReplay(melee.recording, player.client, players);
}

TEST(RulesReplay, NobodyElseDiesWhenALoserLeaves) { expectTruthWithout(3, 1); }

TEST(RulesReplay, CaptureSurvivesItsWinnersDeparture) { expectTruthWithout(2, 2); }

INSTANTIATE_TEST_SUITE_P(Seeds, MeleeReplay, testing::Range(1U, hasShortTests ? 2U : 3U));

}  // namespace
}  // namespace kelvora
