#include "tests/match/replay.h"

#include <algorithm>
#include <random>
#include <set>

#include "base/search.h"
#include "base/text.h"
#include "tests/support/gameTest.h"

namespace kelvora {

namespace {

constexpr Millis landingTime = 20'000;  // after the last message; the longest Extra Long Tails are over by then

using Number = std::int16_t;

Number numberOf(const std::string& field) { return static_cast<Number>(readNumber(field)); }

/// A client that watches while its player's stream is replayed.
class Spectator : public GameTest {
 public:
  Spectator(const Recording::Stream& stream, const ReplayLine& line)
      : stream_(stream), line_(line), random_(line.seed) {
    frmMain->Show();
    connect("Spectator");
    for (const auto& [time, frame] : stream_) {
      for (WireMessage& message : parseFrames(frame)) notePlace(time, message);
    }
  }

  void play() {
    const Millis end = stream_.back().first + landingTime;
    Millis lastArrival = 0;
    std::size_t next = 0;
    for (Millis now = stream_.front().first; now < end; now += line_.frameMs) {
      std::string arrived;
      while (next < stream_.size() && std::max(lastArrival, arrival(next)) <= now) {
        lastArrival = std::max(lastArrival, arrival(next));
        arrived += stream_[next].second;
        note(stream_[next].second);
        ++next;
      }
      fly(now);
      if (!arrived.empty()) server().deliver(arrived);
      passEvents();
      modMain::runFrame();
      releaseUnloadedForms();
      expectTheLiving(now);
      tick(line_.frameMs);
      forgetSent();
      server().sends.clear();
      machine.journal.clear();
      machine.soundCommands.clear();
    }
  }

  void compare(const std::vector<server::PlayerView>& players) {
    std::set<Number> nodes;
    for (const server::PlayerView& player : players) {
      nodes.insert(player.node);
      const clsPlayer* seen = find(player.node);
      ASSERT_NE(seen, nullptr) << player.name << " is not there";
      EXPECT_EQ(seen->alive, player.isAlive) << player.name;
      EXPECT_EQ(seen->kills, player.kills) << player.name;
      EXPECT_EQ(seen->funds(), static_cast<double>(player.funds)) << player.name;
      if (seen != &modMain::world.localPlayer) continue;
      for (std::size_t item = 0; item < player.stock.size(); ++item) {
        EXPECT_EQ(seen->powerups[item].count, player.stock[item]) << "item " << item;
      }
    }
    for (const clsPlayer& opponent : modMain::world.opponents) {
      EXPECT_TRUE(!opponent.isConnected || nodes.contains(opponent.serverNode)) << opponent.name << " should have left";
    }
    EXPECT_EQ(machine.messageBoxes, std::vector<std::string>{});
  }

 private:
  void TestBody() override {}

  Millis arrival(std::size_t index) {
    if (index >= arrivals_.size()) {
      const int frames = line_.latencyFrames + std::uniform_int_distribution(0, line_.jitterFrames)(random_);
      arrivals_.push_back(stream_[index].first + Millis{frames} * line_.frameMs);
    }
    return arrivals_[index];
  }

  /// The player's position at that time is known from their own reports shortly before.
  void notePlace(Millis time, const WireMessage& message) {
    if (message.id == wire::msgLoginAccepted) node_ = numberOf(message.fields[1]);
    if (message.id != wire::msgPosition || numberOf(message.fields[0]) != node_) return;
    places_.emplace_back(time, Vector{static_cast<float>(readNumber(message.fields[1])),
                                      static_cast<float>(readNumber(message.fields[2]))});
  }

  /// The ball is where the next report will put it, because it has moved on by the time of an echo.
  void fly(Millis now) {
    while (nextPlace_ < places_.size() && places_[nextPlace_].first <= now) ++nextPlace_;
    if (places_.empty() || !modMain::world.localPlayer.isConnected) return;
    modMain::world.localPlayer.position = places_[std::min(nextPlace_, places_.size() - 1)].second;
    modMain::world.localPlayer.velocity = {};
    modMain::world.localPlayer.breaksOn = true;
  }

  /// Records who is alive by the latest message. Captures of the others may be pending.
  void note(const std::string& frame) {
    for (const WireMessage& message : parseFrames(frame)) {
      if (message.id == wire::msgLoginAccepted) living_.insert(numberOf(message.fields[1]));
      if (message.id == wire::msgRespawn) living_.insert(numberOf(message.fields[0]));
      if (message.id == wire::msgPlayerJoined && message.fields[5] == "1") living_.insert(numberOf(message.fields[0]));
      if (message.id == wire::msgPlayerLeft) living_.erase(numberOf(message.fields[0]));
      if (message.id == wire::msgTailCapture) living_.erase(numberOf(message.fields[1]));
      if (message.id == wire::msgRoundOver) living_.clear();
      if (message.id == wire::msgAliveState && message.fields[1] == "0") living_.erase(numberOf(message.fields[0]));
    }
  }

  void expectTheLiving(Millis now) {
    for (const Number node : living_) {
      const clsPlayer* player = find(node);
      if (player && player->alive) continue;
      ADD_FAILURE() << "at " << now << " ms node " << node << (player ? " is dead" : " is not there");
      living_.clear();
      return;
    }
  }

  static const clsPlayer* find(Number node) {
    if (modMain::world.localPlayer.isConnected && modMain::world.localPlayer.serverNode == node)
      return &modMain::world.localPlayer;
    return findIf(modMain::world.opponents,
                  [&](const clsPlayer& opponent) { return opponent.isConnected && opponent.serverNode == node; });
  }

  const Recording::Stream& stream_;
  const ReplayLine line_;
  std::mt19937 random_;
  std::vector<Millis> arrivals_;
  Number node_ = 0;
  std::vector<std::pair<Millis, Vector>> places_;
  std::size_t nextPlace_ = 0;
  std::set<Number> living_;
};

}  // namespace

const Recording::Stream& Recording::stream(server::ClientId client) const {
  static const Stream none;
  const auto found = streams_.find(client);
  return found == streams_.end() ? none : found->second;
}

void expectTrueReplay(const Recording& recording, server::ClientId client,
                      const std::vector<server::PlayerView>& players, const ReplayLine& line) {
  SCOPED_TRACE("client " + std::to_string(client));
  const Recording::Stream& stream = recording.stream(client);
  ASSERT_FALSE(stream.empty());
  Spectator spectator(stream, line);
  spectator.play();
  spectator.compare(players);
}

}  // namespace kelvora
