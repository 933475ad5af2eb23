// Every credit in and out is accounted for.

#include <random>

#include "tests/server/arena/arenaTest.h"

namespace kelvora::server {
namespace {

const ArenaRules busy{.roundMs = 30'000,
                      .captureGoal = 8,
                      .intermissionMs = 4'000,
                      .captureCredits = 9,
                      .survivalCredits = 13,
                      .incomePerMinute = 240,
                      .speedFactor = 0};

class LedgerTest : public ArenaTest {
 protected:
  LedgerTest() : ArenaTest(busy) {}

  /// A player's expected funds, computed from messages alone.
  struct Account {
    std::int64_t expected = 10;
    std::int64_t told = 10;
    Millis alive = 0;
  };
  std::map<ClientId, Account> accounts;
  int purchases = 0;
  int sales = 0;
  int captures = 0;
  int rounds = 0;

  /// Books the messages: each player's own credits, and the captures that Ann was told about.
  void settle() {
    for (const auto& [client, messages] : got) {
      for (const Message& message : messages) {
        if (message.id == wire::msgBuyAccepted) {
          accounts[client].expected -= powerupTable.at(static_cast<std::size_t>(std::stoi(message.fields[0]))).price;
          accounts[client].told = std::stoi(message.fields[2]);
          ++purchases;
        } else if (message.id == wire::msgSellAccepted) {
          accounts[client].expected +=
              powerupTable.at(static_cast<std::size_t>(std::stoi(message.fields[0]))).price / 2;
          accounts[client].told = std::stoi(message.fields[2]);
          ++sales;
        }
        if (message.id == wire::msgFunds && node(message) == client)
          accounts[client].told = std::stoi(message.fields[1]);
        if (client == ann && message.id == wire::msgTailCapture && message.fields[0] != message.fields[1]) {
          accounts[node(message)].expected += 9;
          ++captures;
        }
      }
    }
    got.clear();
  }
  /// The numbers of this test's players are their nodes.
  static ClientId node(const Message& message) { return static_cast<ClientId>(std::stoi(message.fields[0])); }
};

TEST_F(LedgerTest, IsBalancedAfterEveryStepOfABusyMatch) {
  for (const ClientId client : {1U, 2U, 3U, 4U}) {
    login(client, "P" + std::to_string(client), std::to_string(client));
    accounts[client];
  }
  std::mt19937 random(5);
  const auto draw = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
  for (int step = 0; step < 20'000; ++step) {
    const auto client = static_cast<ClientId>(1 + draw(3));
    const std::string item = std::to_string(draw(5));
    const bool wasRunning = arena.isRoundRunning();
    const auto before = arena.players(now);
    switch (draw(7)) {
      case 0:
        say(client, wire::msgBuyRequest, {item});
        break;
      case 1:
        say(client, wire::msgSellRequest, {item});
        break;
      case 2:
        say(client, wire::msgActivateRequest, {item});
        break;
      case 3:
        say(client, wire::msgSpawnRequest, {""});
        break;
      default:
        report(client, 48'000 + 500 * draw(8), 48'000 + 500 * draw(8));
    }
    now += 20;
    // The tick pays everybody alive for the time since the previous one, and then ends the round.
    const auto beforeTick = arena.players(now);
    const bool isRunning = arena.isRoundRunning();
    arena.tick(now);
    for (const PlayerView& player : beforeTick) {
      if (player.isAlive) accounts[player.client].alive += 20;
    }
    if (wasRunning && !arena.isRoundRunning()) ++rounds;
    const bool endedEarlier = wasRunning && !isRunning;
    const bool endedByTick = isRunning && !arena.isRoundRunning();
    std::set<ClientId> died;
    for (const Message& message : got[ann]) {
      if (message.id == wire::msgTailCapture) died.insert(static_cast<ClientId>(std::stoi(message.fields[1])));
    }
    for (const PlayerView& player : endedEarlier ? before : beforeTick) {
      if ((endedEarlier || endedByTick) && player.isAlive && !died.contains(player.client)) {
        accounts[player.client].expected += 13;
      }
    }
    settle();
    for (const PlayerView& player : arena.players(now)) {
      const Account& account = accounts[player.client];
      // Four credits per second alive. Fractions left over from one life count in the next.
      ASSERT_EQ(player.funds, account.expected + account.alive * 240 / 60'000) << "step " << step << ' ' << player.name;
      ASSERT_EQ(player.funds, account.told) << "step " << step << ' ' << player.name;
      ASSERT_GE(player.funds, 0);
    }
  }
  EXPECT_GT(purchases, 100);
  EXPECT_GT(sales, 20);
  EXPECT_GT(captures, 50);
  EXPECT_GT(rounds, 5);
}

}  // namespace
}  // namespace kelvora::server
