#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "protocol/frameReader.h"
#include "server/arena/arena.h"
#include "server/bots/bot.h"
#include "server/bots/botKeeper.h"
#include "server/bots/sight.h"
#include "tests/support/gameTest.h"

namespace kelvora {

/// Hours of play at the design pace, as fast as the machine goes: the whole client from its start on, painting every
/// frame, and the whole arena with five bots, in one process and on a clock set by hand. A script does what a player
/// does: steers, asks for the next life, trades and fires, chats, resizes the window, and every half an hour leaves, is
/// refused for a wrong password, and comes back. Another player comes and goes. What an arena never sends - velocities,
/// refused spawns, particles of the net - is put in between its messages.
class LongPlay : public GameTest, private server::ArenaOutput {
 public:
  static constexpr int framesPerSecond = 100;
  static constexpr int framesPerMinute = 60 * framesPerSecond;

  LongPlay();

  /// Goes on with the game for so many frames.
  void play(int frames);
  /// Goes on into the middle of the next intermission: nobody has a tail, the store is closed, and the window has its
  /// design size, so that what is in use then can be compared.
  void playToCalm();
  int framesPlayed() const { return frame_; }

  struct Figures {
    std::int64_t heapBytes = 0;  ///< in use, of client and arena together
    std::int64_t keptBytes = 0;  ///< of those: all players with their tails, as those who leave keep their slots and
                                 ///< tails by the rules, and the particles of the net, which stay likewise
    std::int64_t residentBytes = 0;
    std::size_t slots = 0;  ///< opponents that there have been
    int captures = 0;
    int rounds = 0;
    double clientMicroseconds = 0;  ///< processor time of a pass of the client, average since the last call
  };
  Figures figures();

  std::map<int, int> received;  ///< messages that came to the client, by id
  std::map<int, int> sent;      ///< and that it sent
  int boxes = 0;                ///< message boxes that stood

 private:
  void TestBody() override {}
  void onPass();
  void playFrame();
  void act();
  void steer();
  void trade();
  void typeLine(const std::string& line);
  void inject();
  void relay();
  void logIn(const std::string& password);
  void follow();
  void tickArena();
  void visit();

  bool every(int frames, int at = 0) const { return frame_ % frames == at; }
  Millis now() const { return machine.ticks; }
  void send(server::ClientId client, const std::string& frame) override;
  void hangUp(server::ClientId client) override;
  void log(const std::string&) override {}

  server::Arena arena_;
  server::BotKeeper keeper_;
  server::Sight sight_;
  std::optional<server::Bot> visitor_;
  server::ClientId visitorClient_ = 0;
  server::ClientId ourClient_ = 0;
  server::ClientId lastClient_ = 0;
  std::optional<wire::FrameReader> reader_;
  std::string toUs_;
  std::deque<std::string> underWay_;  // what the arena sent, a frame's worth each
  int frame_ = 0;
  int end_ = 0;
  bool isInPass_ = false;
  int captures_ = 0;
  int rounds_ = 0;
  std::int64_t clientTime_ = 0;  // ns
  std::int64_t passBegan_ = 0;
  int passes_ = 0;
};

}  // namespace kelvora
