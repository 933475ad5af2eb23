#pragma once

#include <optional>
#include <random>

#include "server/bots/botView.h"
#include "server/bots/foresight.h"
#include "server/bots/skill.h"

namespace kelvora::server {

/// What a bot does next.
struct Intent {
  double angle = 0;     ///< to fly in, radians
  double throttle = 0;  ///< part of full speed
  bool brakes = false;
  std::optional<int> powerup = std::nullopt;  ///< to activate
};

/// Decides for a bot what it does, from what it sees alone: no clock, no sockets, and the same decisions for the same
/// seed. To be asked every 40 ms.
class Mind {
 public:
  Mind(const Skill& skill, std::uint32_t seed) : skill_(skill), random_(seed) {}

  Intent think(const BotView& view);
  /// What to buy with the credits at hand; nothing if there is no need or no money.
  std::optional<int> wantsToBuy(const BotView& view);
  /// It has captured somebody, which it enjoys for a while.
  void triumph(Millis now);
  /// For a new life: nothing of the old one is gone on with.
  void forget();

  double between(double low, double high) { return std::uniform_real_distribution(low, high)(random_); }
  bool chance(double part) { return between(0, 1) < part; }

 private:
  struct Loop {
    std::int16_t prey;
    Point centre;
    Point miss;  // by which the centre is off
    double radius;
    double side;       // 1 or -1, the sense of turning
    double swept = 0;  // radians
    double lastAngle;  // from the centre
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
  std::optional<int> choosePowerup(const BotView& view);
  bool has(const BotView& view, int item) const;

  void steer(double angle, double throttle);

  const Skill& skill_;
  std::mt19937 random_;
  double angle_ = 0;   // of flight
  double wanted_ = 0;  // before the hand's limits
  double throttle_ = 0;
  bool brakes_ = false;
  double wobble_ = 0;
  std::optional<Loop> loop_;
  std::int16_t prey_ = 0;  // 0: none
  Millis bored_ = 0;       // when to look for another prey
  Millis restsUntil_ = 0;
  bool restsStill_ = false;
  std::optional<Point> goal_;  // of wandering
  bool isClosing_ = false;
  bool isFleeing_ = false;
  Millis calmSince_ = 0;
  bool noticed_ = false;  // the danger that there is
  Millis nextPowerup_ = 0;
};

}  // namespace kelvora::server
