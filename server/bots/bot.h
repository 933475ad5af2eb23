#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "server/bots/chatter.h"
#include "server/bots/flight.h"
#include "server/bots/mind.h"
#include "server/bots/sight.h"

namespace kelvora::server {

/// A player controlled by the server. The arena treats it as a client like any other: the bot gets the arena's frames
/// and answers with its own, at the pace and within the limits of real ones.
class Bot {
 public:
  using Say = std::function<void(const std::string& frame)>;

  Bot(std::string name, SkillLevel level, std::uint32_t seed);

  const std::string& name() const { return name_; }
  SkillLevel level() const { return level_; }

  /// The frame of the bot's login.
  std::string login(const std::string& password, PlayerColour colour, const std::string& version) const;
  /// Handles a frame from the arena. The bot answers at the next tick.
  void hear(std::string_view frame, Millis now);
  /// Runs the bot for 40 ms. `self` is what the arena knows about it.
  void tick(const Sight& sight, const PlayerView& self, Millis now, const Say& say);

 private:
  struct Doom {  // a pending capture of this bot
    std::int16_t winner;
    Point vertex;
    Millis landsAt = 0;
  };

  void begin(double x, double y, Millis now);
  void noticeCapture(std::int16_t winner, std::int16_t loser, Point vertex, Millis now);
  void die(Millis now);
  void rise(Millis now);
  void awaitDoom(const Sight& sight, Millis now);
  void act(const BotView& view, const Say& say);
  void actWhileDead(const BotView& view, const Say& say);
  void report(const Say& say) const;

  const std::string name_;
  const SkillLevel level_;
  Mind mind_;
  Chatter chatter_;
  std::optional<Flight> flight_;  // set once logged in
  std::int16_t node_ = 0;
  bool isAlive_ = true;
  std::vector<Doom> dooms_;
  bool owesPingReply_ = false;
  Millis brakesUntil_ = 0;
  Millis spawnAt_ = 0;  // when to request the next life
  Millis nextBuy_ = 0;
};

}  // namespace kelvora::server
