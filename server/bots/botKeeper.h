#pragma once

#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "server/arena/arena.h"
#include "server/bots/bot.h"
#include "server/bots/botSettings.h"

namespace kelvora::server {

/// Fills the arena with bots while people are in. Bots join one by one after the first person, make room for others,
/// and leave with the last one.
class BotKeeper {
 public:
  /// `password` and `version` are the arena's.
  BotKeeper(Arena& arena, BotSettings settings, std::string password, std::string version, std::uint32_t seed);

  /// Called when the arena sends a frame to a bot or closes its connection. Both take effect at the next tick, because
  /// the arena must not be called from within its own calls.
  void hear(ClientId client, std::string_view frame, Millis now);
  void hangUp(ClientId client);
  /// Call this at least every 40 ms. However often it is called, bots act every 40 ms.
  void tick(Millis now);

  /// Changes the number of bots and their skill. Bots of another skill leave, and others come.
  void configure(BotSettings settings, Millis now);
  const BotSettings& settings() const { return settings_; }

  /// Bots that are in or joining.
  std::size_t count() const;

 private:
  struct Seat {
    SkillLevel level = SkillLevel::mixed;
    std::string name{};
    std::optional<Bot> bot{};  // set while it is in
    ClientId client = 0;
    bool isHungUp = false;
    Millis backAt = 0;
  };

  void step(Millis now);
  void makeRoom(Millis now);
  void fill(Millis now);
  void join(Seat& seat, Millis now);
  void leave(Seat& seat, Millis now);
  Seat* find(ClientId client);
  std::size_t people() const;
  std::string freshName();

  Arena& arena_;
  BotSettings settings_;
  const std::string password_;
  const std::string version_;
  std::mt19937 random_;
  Sight sight_;
  std::vector<Seat> seats_;
  ClientId lastClient_ = firstBotClient;
  Millis next_ = 0;
  Millis nextArrival_ = 0;
};

}  // namespace kelvora::server
