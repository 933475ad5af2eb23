#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>

#include "protocol/frameReader.h"
#include "server/arena/arena.h"
#include "server/bots/bot.h"
#include "server/bots/botKeeper.h"
#include "server/bots/sight.h"
#include "tools/headless/headlessClient.h"

namespace kelvora {

/// Plays for hours at the design pace, at full speed: a whole client, painting every frame, and a whole arena with five
/// bots, in one process and on a clock set by hand. A script acts as the player: steers, respawns, trades and fires,
/// chats, resizes the window. Every half hour it leaves, is refused for a wrong password, and comes back. Another
/// player comes and goes. Messages that the arena doesn't send in such a game, such as velocities, refused spawns and
/// network particles, are injected.
class LongPlay : private HeadlessClient, private server::ArenaOutput {
 public:
  static constexpr int framesPerSecond = 100;
  static constexpr int framesPerMinute = 60 * framesPerSecond;

  LongPlay();

  /// Continues the game for this many frames.
  void play(int frames);
  /// Continues into the middle of the next intermission: nobody has a tail, the store is closed, and the window has its
  /// design size, so that memory can be compared.
  void playToCalm();
  int framesPlayed() const { return frame_; }

  struct Figures {
    std::int64_t heapBytes = 0;  ///< used by client and arena combined
    std::int64_t keptBytes = 0;  ///< part that the rules keep: players with their tails, network particles
    std::size_t slots = 0;       ///< opponents so far
    int captures = 0;
    int rounds = 0;
    double clientMicroseconds = 0;  ///< processor time of a client's pass, average since the last call
  };
  Figures figures();

  std::map<int, int> received;  ///< messages to the client, by id
  std::map<int, int> sent;      ///< messages from the client, by id
  int boxes = 0;                ///< message boxes opened

 private:
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
  std::deque<std::string> underWay_;  // the arena's messages, one frame each
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
