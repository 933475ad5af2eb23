#pragma once

#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "server/arena/arena.h"
#include "server/bots/bot.h"
#include "server/bots/botWishes.h"

namespace kelvora::server {

/// Fills an arena up with bots while there are people in it. They come one by one after the first person, make room for
/// other people, and leave with the last one.
class BotKeeper {
 public:
  /// The arena is one of that version and password.
  BotKeeper(Arena& arena, BotWishes wishes, std::string password, std::string version, std::uint32_t seed);

  /// What the arena sends to a bot, and that it ends a bot's connection. They act on it at the next tick only, since
  /// the arena must not be called from within.
  void hear(ClientId client, std::string_view frame, Millis now);
  void hangUp(ClientId client);
  /// To be called at least every 40 ms; the bots act that often, however often it is called.
  void tick(Millis now);

  /// Bots that are in or on their way.
  std::size_t count() const;

 private:
  struct Seat {
    SkillLevel level;
    std::string name{};
    std::optional<Bot> bot{};  // while it is in
    ClientId client = 0;
    bool isHungUp = false;
    Millis backAt = 0;
  };

  void step(Millis now);
  void makeRoom(Millis now);
  void fill(Millis now);
  void seat(Seat& seat, Millis now);
  void leave(Seat& seat, Millis now);
  Seat* find(ClientId client);
  std::size_t people() const;
  std::string freshName() const;

  Arena& arena_;
  const BotWishes wishes_;
  const std::string password_;
  const std::string version_;
  mutable std::mt19937 random_;
  Sight sight_;
  std::vector<Seat> seats_;
  ClientId lastClient_ = firstBotClient;
  Millis next_ = 0;
  Millis nextArrival_ = 0;
};

}  // namespace kelvora::server
