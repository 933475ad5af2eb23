#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "base/vector.h"

namespace kelvora {

enum class ParticleType : std::uint8_t { Background = 0, Network = 1, Explosion = 2, Reserved = 3 };

/// Anything small that floats in the world without being a player. Positions are world units.
class clsParticle {
 public:
  // Quirk Q-266: two ways to set the number, which do the same.
  void setNum(double value) { num_ = value; }
  void num(double value) { num_ = value; }
  void initNormal(double number, const std::string& id, std::int16_t kind, float x, float y, float dx, float dy);
  void init(double number, std::uint8_t type, float x, float y, std::int16_t a = 0, std::int16_t b = 0);
  void choosePosition();
  void chooseVelocity();
  /// Brings a background particle that has fallen behind by more than the field's size back on the far side.
  void wrap();
  void scatter();
  /// Free motion, one frame.
  void move();
  /// Motion along the server's positions, one frame.
  void moveNormal();
  void queuePosition(Vector point);
  void paintSelf();

  Vector getScreenPosition() const;
  const Vector& getPosition() const { return position; }

  double num_ = 0;
  std::uint8_t type = 0;
  Vector position;
  std::uint8_t kind = 0;
  float fieldWidth = 0;  ///< canvas size when the position was chosen
  float fieldHeight = 0;
  Vector velocity;
  float maxSpeed = 0;
  // Quirk Q-267: these two numbers and the previous position are kept, and nobody reads them.
  std::int16_t first = 0;
  std::int16_t second = 0;
  Vector previousPosition;  ///< at the start of the latest `moveNormal`
  std::int16_t depth = 0;
  std::string id;
  bool spawned = false;
  std::uint8_t red = 0, green = 0, blue = 0;
  std::deque<Vector> positionQueue;
  bool hasPosition = false;
  bool stepSet = false;
  bool blink = false;
  std::int16_t age = 0;

 private:
  /// Takes the oldest of the server's positions away.
  void dropQueuedPosition();
  /// Counts one paint of an explosion particle; True if it is not to be drawn. It may have left its pool.
  bool isWaiting();
  void paintBackground(Vector place) const;
  void paintSpriteAt(Vector place, bool exchanged) const;
};

}  // namespace kelvora
