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
  /// Begins a particle of the server's: place in world units, velocity in world units per frame. A kind outside 0 to
  /// 255 is RuntimeFault "Overflow".
  void initNormal(double number, const std::string& id, std::int16_t kind, float x, float y, float dx, float dy);
  /// Begins a particle of the client's own type; draws what the type leaves to chance. Background particles choose
  /// their own place, the others get (x, y); `a` and `b` are the reserved type's.
  void init(double number, std::uint8_t type, float x, float y, std::int16_t a = 0, std::int16_t b = 0);
  /// Draws a place round the local player, as far off as the canvas is large.
  void choosePosition();
  /// Draws a velocity of up to `maxSpeed` a component; slow components of explosions are quickened.
  void chooseVelocity();
  /// Brings a background particle that has fallen behind by more than the field's size back on the far side.
  void wrap();
  /// Draws a new depth, and moves by up to 500 on both axes.
  void scatter();
  /// Free motion, one frame.
  void move();
  /// Motion along the server's positions, one frame.
  void moveNormal();
  /// The first position places the particle, later ones wait. Points outside the world are ignored.
  void queuePosition(Vector point);
  /// Paints the particle if it is on the canvas. An explosion particle may leave its pool in this.
  void paintSelf();

  /// Canvas units.
  Vector getScreenPosition() const;
  const Vector& getPosition() const { return position; }

  double num_ = 0;        ///< its number in its pool
  std::uint8_t type = 0;  ///< a ParticleType, or another number from the console, which paints nothing
  Vector position;
  std::uint8_t kind = 0;  ///< cell of the sheet of balls, 0 to 9
  float fieldWidth = 0;   ///< canvas size when the position was chosen
  float fieldHeight = 0;
  Vector velocity;     ///< world units per frame
  float maxSpeed = 0;  ///< of each component
  // Quirk Q-267: these two numbers and the previous position are kept, and nobody reads them.
  std::int16_t first = 0;
  std::int16_t second = 0;
  Vector previousPosition;  ///< at the start of the latest `moveNormal`
  std::int16_t depth = 0;   ///< 0 near to 16 far
  std::string id;           ///< the server's name for it
  bool spawned = false;     ///< False once the server has removed it
  std::uint8_t red = 0, green = 0, blue = 0;
  std::deque<Vector> positionQueue;  ///< received and not yet reached, the next target first
  bool hasPosition = false;
  bool stepSet = false;  ///< `moveNormal` has a velocity for its current target
  bool blink = false;    ///< changes with every paint of an explosion particle
  std::int16_t age = 0;  ///< paints counted, see `isWaiting`

 private:
  /// Counts one paint of an explosion particle; True if it is not to be drawn. It may have left its pool.
  bool isWaiting();
  void paintBackground(Vector place) const;
  void paintSpriteAt(Vector place, bool exchanged) const;
};

}  // namespace kelvora
