#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "base/text.h"
#include "protocol/frameReader.h"
#include "protocol/rules.h"
#include "protocol/wireFormat.h"
#include "rendering/frmGfx.h"
#include "server/arena/arena.h"
#include "tests/support/gameTest.h"
#include "tests/support/shortTests.h"
#include "tools/headless/heap.h"

// A long match: the real client, the real rules of the server and five other players, in one process and on a clock set
// by hand, so that half an hour of play takes seconds.

namespace kelvora {
namespace {

constexpr Millis frameLength = 10;  // ms, the design pace
constexpr int framesPerMinute = 6000;
constexpr int framesPerReport = 4;
constexpr int restLength = 600;  // frames at the end of a minute
constexpr int latency = 3;       // frames
constexpr server::ClientId ourClient = 1;

/// Flies smooth curves over the world, rests at the end of every minute, and reports as a client does.
class Pilot {
 public:
  Pilot(int number, Vector start) : phase_(static_cast<float>(number)), place_(start) {}

  void fly(int frame) {
    const float turn = phase_ + static_cast<float>(frame) * 0.004F;
    place_.x = std::clamp(place_.x + 180 * std::cos(turn), 0.0F, rules::worldSize);
    place_.y = std::clamp(place_.y + 180 * std::sin(turn * (1 + phase_ / 10)), 0.0F, rules::worldSize);
  }
  std::string report() const {
    return static_cast<char>(wire::msgPositionReport) + numberText(place_.x) + wire::fieldSeparator +
           numberText(place_.y);
  }

 private:
  float phase_;
  Vector place_;
};

class LongMatch : public GameTest, public server::ArenaOutput {
 protected:
  LongMatch() { frmMain->Show(); }

  /// Passes our frames to the arena's rules. Its answers take three frames to arrive.
  void relay() {
    std::string& sent = server().sent;
    EXPECT_TRUE(reader_.read(sent, [this](std::string_view text) { arena_.received(ourClient, text, now()); }));
    forgetSent();
    server().sends.clear();
    underWay_.push_back(std::move(toUs_));
    toUs_.clear();
    if (static_cast<int>(underWay_.size()) <= latency) return;
    const std::string arrived = std::move(underWay_.front());
    underWay_.pop_front();
    if (arrived.empty()) return;
    for (const WireMessage& message : parseFrames(arrived)) note(message);
    server().deliver(arrived);
  }

  void note(const WireMessage& message) {
    if (message.id != wire::msgPosition) return;
    lastRelayed_[static_cast<std::int16_t>(readNumber(message.fields[0]))] = {
        static_cast<float>(readNumber(message.fields[1])), static_cast<float>(readNumber(message.fields[2]))};
    ++relayed_;
  }

  void pass(int frames) {
    for (int i = 0; i < frames; ++i) {
      relay();
      passEvents();
    }
  }

  void join() {
    arena_.connected(ourClient, now());
    connect("Ann");
    pass(latency + 1);
    for (server::ClientId other = 2; other <= 6; ++other) {
      arena_.connected(other, now());
      const std::string name = "P" + std::to_string(other);
      arena_.received(other, static_cast<char>(wire::msgLogin) + name + "\x82\x82" + "0\x82" + appVersionText(), now());
    }
    pass(latency + 1);
    ASSERT_TRUE(modMain::world.localPlayer.isConnected);
    ASSERT_EQ(modMain::world.opponentCount, 5);
    for (int i = 0; i < 5; ++i) pilots_.emplace_back(i, modMain::world.opponents[static_cast<std::size_t>(i)].position);
    modMain::world.localPlayer.toggleBreaks();
  }

  void playFrame(int frame) {
    const bool rests = (frame - 1) % framesPerMinute >= framesPerMinute - restLength;
    for (server::ClientId other = 2; other <= 6; ++other) {
      Pilot& pilot = pilots_[other - 2];
      if (!rests) {
        pilot.fly(frame);
        if (frame % framesPerReport == 0) arena_.received(other, pilot.report(), now());
      }
      if (frame % 700 == 0)
        arena_.received(other, static_cast<char>(wire::msgChat) + std::string("-1\x82hello"), now());
    }
    const float turn = static_cast<float>(frame) * 0.003F;
    frmMain->canvas.MouseMove(0, 0, 5722 + 5000 * std::cos(turn), 4560 + 4000 * std::sin(turn));
    if (frame % 900 == 0) netMan::sendChat("still here");
    modMain::runFrame();
    arena_.tick(now());
    relay();
    tick(frameLength);
    passEvents();
    machine.journal.clear();
    machine.soundCommands.clear();
  }

  /// Once everybody has rested for a while, every opponent is at the server's last position, and our own tail ends
  /// there.
  void expectNoDrift() {
    const clsPlayer& local = modMain::world.localPlayer;
    EXPECT_EQ(local.tails.back().getPosition(), lastRelayed_[local.serverNode]);
    for (int i = 0; i < 5; ++i) {
      const clsPlayer& opponent = modMain::world.opponents[static_cast<std::size_t>(i)];
      EXPECT_EQ(opponent.position, lastRelayed_[opponent.serverNode]) << opponent.name;
      EXPECT_EQ(opponent.positionQueueCount(), 0);
    }
  }

  Millis now() const { return machine.ticks; }

  void send(server::ClientId client, const std::string& frame) override {
    if (client == ourClient) toUs_ += frame;
  }
  void hangUp(server::ClientId client) override { ADD_FAILURE() << "client " << client << " was hung up on"; }
  void log(const std::string&) override {}

  server::Arena arena_{*this, appVersionText(), "", 1, {.roundMs = 1000 * 3600, .speedFactor = 0}};
  wire::FrameReader reader_;
  std::vector<Pilot> pilots_;
  std::string toUs_;
  std::deque<std::string> underWay_;  // what the server sent, one entry per frame of the game
  std::map<std::int16_t, Vector> lastRelayed_;
  int relayed_ = 0;
};

TEST_F(LongMatch, HalfAnHourOfSixPlayersStaysBoundedAndConsistent) {
  join();
  constexpr int minutes = hasShortTests ? 6 : 30;
  std::vector<std::int64_t> heapByMinute;
  double maxTailLength = 0;
  std::size_t maxQueueLength = 0;
  for (int frame = 1; frame <= minutes * framesPerMinute; ++frame) {
    playFrame(frame);
    maxTailLength = std::max(maxTailLength, modMain::world.localPlayer.tailCount());
    for (const clsPlayer& opponent : modMain::world.opponents) {
      maxTailLength = std::max(maxTailLength, opponent.tailCount());
      maxQueueLength = std::max(maxQueueLength, opponent.positionQueue.size());
    }
    if (frame % framesPerMinute == 0) {
      expectNoDrift();
      heapByMinute.push_back(usedHeapBytes());
    }
  }
  // Everybody reports 25 times a second: the others for 54 seconds of each minute, we for all of it and once more after
  // each ping.
  EXPECT_GE(relayed_, minutes * 25 * (60 + 5 * 54) - 6);
  EXPECT_LE(relayed_, minutes * 25 * (60 + 5 * 54) + minutes * 6);
  // A vertex expires above 200 units of 10 ms, counted from its second ageing. A player lays at most one vertex per
  // frame, and one more for a point reached in it.
  EXPECT_LE(maxTailLength, 2 * 205);
  EXPECT_GT(maxTailLength, 40);
  EXPECT_EQ(modMain::world.particleCount, 150);
  EXPECT_EQ(modMain::world.explosionCount, 0);
  EXPECT_LT(maxQueueLength, 400U);
  EXPECT_EQ(modMain::world.opponentCount, 5);
  // The heap has the same size in the last minute as in the fifth: nothing grows with time.
  const auto early = static_cast<double>(heapByMinute[4]);
  EXPECT_NEAR(static_cast<double>(heapByMinute.back()), early, early * 0.02);
}

}  // namespace
}  // namespace kelvora
