#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "generated/version.h"
#include "protocol/messages.h"
#include "server/arena/arena.h"
#include "tests/server/arena/recorder.h"

namespace kelvora::server {

/// Rules without disturbances: an endless round, any speed, no income.
inline const ArenaRules quietRules{
    .roundMs = 1'000'000'000'000, .captureGoal = 0, .incomePerMinute = 0, .speedFactor = 0};

inline ArenaRules quietRulesWithIncome(int income) {
  ArenaRules rules = quietRules;
  rules.incomePerMinute = income;
  return rules;
}

/// An arena whose clients only record what they get.
class ArenaTest : public testing::Test, protected Recorder {
 protected:
  static constexpr ClientId ann = 1;
  static constexpr ClientId bob = 2;
  static constexpr ClientId cat = 3;

  Millis now = 5'000;
  Arena arena;
  Arena locked{*this, KELVORA_VERSION, "sesame", 1};

  explicit ArenaTest(const ArenaRules& rules = quietRules) : arena(*this, KELVORA_VERSION, "", 1, rules) {}

  void say(ClientId client, std::int16_t id, const Fields& fields) { arena.received(client, textOf(id, fields), now); }
  /// Logs a client in and discards what everybody got.
  std::int16_t login(ClientId client, const std::string& name, const std::string& colour = "0") {
    got.clear();
    arena.connected(client, now);
    say(client, wire::msgLogin, {name, "", colour, KELVORA_VERSION});
    const std::int16_t node = static_cast<std::int16_t>(std::stoi(got[client].at(0).fields.at(1)));
    got.clear();
    return node;
  }
  void report(ClientId client, int x, int y) {
    say(client, wire::msgPositionReport, {std::to_string(x), std::to_string(y)});
  }
  /// Flies a square of 2000 units around the position. The last side crosses the first.
  void circle(ClientId client, int x, int y) {
    report(client, x - 1'200, y - 1'000);
    report(client, x + 1'000, y - 1'000);
    report(client, x + 1'000, y + 1'000);
    report(client, x - 1'000, y + 1'000);
    report(client, x - 1'000, y - 1'200);
  }
  /// Lets one player capture another in the middle of the world. Discards what everybody got.
  void capture(ClientId winner, ClientId loser) {
    report(loser, 50'000, 50'000);
    circle(winner, 50'000, 50'000);
    EXPECT_FALSE(view(loser).isAlive);
    got.clear();
  }
  PlayerView view(ClientId client) {
    for (const PlayerView& player : arena.players(now)) {
      if (player.client == client) return player;
    }
    ADD_FAILURE() << "client " << client << " is not in";
    return {};
  }
  /// The messages to a client with that id.
  std::vector<Fields> all(ClientId client, int id) {
    std::vector<Fields> found;
    for (const Message& message : got[client]) {
      if (message.id == id) found.push_back(message.fields);
    }
    return found;
  }
  void pass(Millis time) { arena.tick(now += time); }
  /// The reason for refusing a login; empty if it was accepted.
  std::string refusal(Arena& where, const Fields& fields) {
    constexpr ClientId stranger = 99;
    got.erase(stranger);
    hungUp.clear();
    where.connected(stranger, now);
    where.received(stranger, textOf(wire::msgLogin, fields), now);
    const Message answer = got[stranger].at(0);
    if (answer.id != wire::msgLoginDenied) return {};
    EXPECT_EQ(got[stranger].size(), 1U);
    EXPECT_TRUE(hungUp.contains(stranger));
    return answer.fields.at(0);
  }
};

}  // namespace kelvora::server
