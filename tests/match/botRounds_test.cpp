// A hundred rounds of bots only. Every round ends, the credits balance, and real clients that replay the arena's
// messages end up with the same state.

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "generated/version.h"
#include "protocol/messages.h"
#include "server/arena/arena.h"
#include "server/bots/bot.h"
#include "tests/match/replay.h"
#include "tests/support/shortTests.h"
#include "tests/support/wireMessage.h"

namespace kelvora {
namespace {

using server::Bot;
using server::ClientId;
using server::PlayerView;
using server::SkillLevel;

constexpr int roundsToPlay = hasShortTests ? 10 : 100;
constexpr Millis maxRoundTime = 180'000 + 12'000;
constexpr ClientId botCount = 6;
constexpr ClientId spectator = 7;
constexpr std::int64_t startCredits = 10;
constexpr std::int64_t captureCredits = 10;
constexpr std::int64_t survivalCredits = 10;

/// A player's income and expenses, computed from the frames alone.
struct Account {
  std::int64_t captures = 0;
  std::int64_t survivals = 0;
  std::int64_t spent = 0;
  Millis alive = 0;  ///< as of the arena's last tick
};

/// Six bots of all levels in an arena that takes them for people, so that its clock runs.
class BotMatch : private server::ArenaOutput {
 public:
  BotMatch(unsigned seed, bool records)
      : isRecording_(records), arena_(*this, KELVORA_VERSION, "", seed, {.spectators = 1}) {
    constexpr std::array levels = {SkillLevel::easy, SkillLevel::normal, SkillLevel::hard};
    for (ClientId client = 1; client <= botCount; ++client) {
      bots_.emplace_back("Bot" + std::to_string(client), levels[client % 3], seed * 10 + client);
    }
    for (ClientId client = 1; client <= botCount; ++client) {
      arena_.connected(client, now_);
      arena_.received(client, wire::textOf(bots_[client - 1].login("", redPlayer, KELVORA_VERSION)), now_);
    }
  }

  /// Somebody begins to watch.
  void admitSpectator() {
    arena_.connected(spectator, now_, server::Role::spectator);
    arena_.received(spectator, textOf(wire::msgLogin, {"Spectator", "", "0", KELVORA_VERSION}), now_);
  }
  void play(Millis time) {
    for (const Millis end = now_ + time; now_ < end;) step();
  }
  /// Plays to the end of a round. False if it doesn't end in time.
  bool playRound() {
    const std::size_t before = results.size();
    for (const Millis end = now_ + maxRoundTime; results.size() == before && now_ < end;) step();
    return results.size() > before;
  }
  /// Waits until every capture has landed, without anybody acting.
  void settle() {
    for (const Millis end = now_ + 9'000; now_ < end; now_ += 40) arena_.tick(now_);
  }
  std::vector<PlayerView> players() const { return arena_.players(now_); }

  Recording recording;
  int captures = 0;
  int capturesBefore = 0;
  int roundsWithCaptures = 0;
  std::map<ClientId, Account> accounts;
  std::vector<std::string> results;

 private:
  void step() {
    now_ += server::Sight::step;
    for (ClientId client = 1; client <= botCount; ++client) {
      if (!isDead_[client]) accounts[client].alive += server::Sight::step;
    }
    arena_.tick(now_);
    sight_.add(players(), now_);
    for (ClientId client = 1; client <= botCount; ++client) {
      bots_[client - 1].tick(sight_, *sight_.player(client), now_,
                             [&](const std::string& frame) { arena_.received(client, wire::textOf(frame), now_); });
    }
  }

  void send(ClientId client, const std::string& frame) override {
    if (isRecording_) recording.add(client, now_, frame);
    if (client == spectator) return;
    const auto [id, fields] = messageOf(frame);
    // The nodes are 1 to 6 in the order of the logins, like the clients.
    if (client == 1 && id == wire::msgTailCapture) {
      if (fields[0] != fields[1]) accounts[clientOf(fields[0])].captures += captureCredits;
      isDead_[clientOf(fields[1])] = true;
      ++captures;
    }
    if (client == 1 && id == wire::msgRespawn) isDead_[clientOf(fields[0])] = false;
    if (client == 1 && id == wire::msgRoundOver) endRound(fields[0]);
    if (id == wire::msgBuyAccepted) {
      accounts[client].spent += powerupTable.at(static_cast<std::size_t>(readNumber(fields[0]))).price;
    }
    bots_[client - 1].hear(frame, now_);
  }
  void endRound(std::string result) {
    results.push_back(std::move(result));
    for (ClientId client = 1; client <= botCount; ++client) {
      if (!std::exchange(isDead_[client], true)) accounts[client].survivals += survivalCredits;
    }
    if (captures > capturesBefore) ++roundsWithCaptures;
    capturesBefore = captures;
  }
  static ClientId clientOf(std::string_view node) { return static_cast<ClientId>(readNumber(node)); }
  void hangUp(ClientId client) override { ADD_FAILURE() << "client " << client << " was hung up on"; }
  void log(const std::string&) override {}

  const bool isRecording_;
  Millis now_ = 5'000;
  server::Arena arena_;
  server::Sight sight_;
  std::vector<Bot> bots_;
  std::map<ClientId, bool> isDead_;
};

TEST(BotRounds, AHundredRoundsEndWithBalancedCredits) {
  BotMatch match(1, false);
  for (int round = 0; round < roundsToPlay; ++round) ASSERT_TRUE(match.playRound()) << "round " << round;
  EXPECT_GE(match.roundsWithCaptures, roundsToPlay * 9 / 10);
  EXPECT_GE(match.captures, 4 * roundsToPlay);
  for (const PlayerView& player : match.players()) {
    const Account& account = match.accounts[player.client];
    // The rest is income: one credit for 12 seconds alive, without fractions. Each life may have begun or ended in the
    // middle of a tick of 40 ms. For a thousand lives that is 40 seconds, or 4 credits.
    const std::int64_t income = player.funds - startCredits - account.captures - account.survivals + account.spent;
    EXPECT_NEAR(static_cast<double>(income), static_cast<double>(account.alive) / 12'000, 4) << player.name;
    EXPECT_GE(player.funds, 0) << player.name;
  }
}

TEST(BotRounds, ClientsSeeThemAsTheServerDoes) {
  // Six extra rounds, because a client takes about half a second for each.
  for (const unsigned seed : {2U, 3U, 4U}) {
    if (hasShortTests && seed > 2) break;
    BotMatch match(seed, true);
    ASSERT_TRUE(match.playRound());
    ASSERT_TRUE(match.playRound());
    match.settle();
    const auto players = match.players();
    ASSERT_EQ(players.size(), botCount);
    const ClientId client = 1 + seed % botCount;
    expectTrueReplay(match.recording, client, players, {.latencyFrames = static_cast<int>(seed)});
  }
}

TEST(BotRounds, ASpectatorWhoComesLateSeesThemAsTheServerDoes) {
  BotMatch match(5, true);
  match.play(20'000);
  ASSERT_GT(match.captures, 0) << "the spectator must have missed something";
  match.admitSpectator();
  ASSERT_TRUE(match.playRound());
  ASSERT_TRUE(match.playRound());
  match.settle();
  expectTrueReplay(match.recording, spectator, match.players(), {.latencyFrames = 5, .jitterFrames = 4});
}

}  // namespace
}  // namespace kelvora
