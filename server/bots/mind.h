#pragma once

#include <optional>
#include <random>

#include "server/bots/botView.h"
#include "server/bots/foresight.h"
#include "server/bots/skill.h"

namespace kelvora::server {

/// A bot's next action.
struct Intent {
  double angle = 0;     ///< direction of flight, radians
  double throttle = 0;  ///< fraction of full speed
  bool brakes = false;
  std::optional<PowerupSlot> powerup = std::nullopt;  ///< to activate
};

/// Decides what a bot does, based on what it sees. Uses no clock and no sockets, and the same seed gives the same
/// decisions. Call it every 40 ms.
class Mind {
 public:
  Mind(const Skill& skill, std::uint32_t seed) : skill_(skill), random_(seed) {}

  /// Decides for the next 40 ms.
  Intent think(const BotView& view);
  /// The powerup to buy with the available credits; nothing if none is needed or affordable.
  std::optional<PowerupSlot> wantsToBuy(const BotView& view);
  /// Called when the bot has captured somebody. It pauses to enjoy that.
  void triumph(Millis now);
  /// Resets the plans at the start of a new life.
  void forget();

  /// A random number from `low` to `high`, and an event of a given probability.
  double between(double low, double high) { return std::uniform_real_distribution(low, high)(random_); }
  bool chance(double probability) { return between(0, 1) < probability; }

 private:
  struct Loop {
    std::int16_t prey;
    Point centre;
    Point miss;  // offset of the centre, from the skill's aiming error
    double radius;
    double side;       // 1 or -1, the direction of turning
    double swept = 0;  // radians
    double lastAngle;  // seen from the centre
    Millis since;
  };

  // hunting.cpp
  void hunt(const BotView& view);
  const Seen* choosePrey(const BotView& view);
  bool closeLoop(const BotView& view);
  void approach(const BotView& view, const Seen& prey);
  void flyLoop(const BotView& view);
  void endLoop(const BotView& view);
  double throttle() const { return skill_.throttle; }
  double speed(const BotView& view) const;

  // wandering.cpp
  void wander(const BotView& view, double throttle);
  void rest(const BotView& view);

  // danger.cpp
  bool flee(const BotView& view);
  void avoidCharges(const BotView& view);

  // powerupUse.cpp
  std::optional<PowerupSlot> choosePowerup(const BotView& view);
  bool has(const BotView& view, PowerupSlot item) const;

  void steer(double angle, double throttle);

  const Skill& skill_;
  std::mt19937 random_;
  double angle_ = 0;   // of flight
  double wanted_ = 0;  // the desired angle, before the hand's limits
  double throttle_ = 0;
  bool brakes_ = false;
  double wobble_ = 0;
  std::optional<Loop> loop_;
  std::int16_t prey_ = 0;  // node; 0 for none
  Millis bored_ = 0;       // when to look for other prey
  Millis restsUntil_ = 0;
  bool restsStill_ = false;
  std::optional<Point> goal_;  // destination while wandering
  bool isClosing_ = false;
  bool isFleeing_ = false;
  Millis calmSince_ = 0;
  bool noticed_ = false;  // whether the current danger was noticed
  Millis nextPowerup_ = 0;
};

}  // namespace kelvora::server
