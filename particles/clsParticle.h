#pragma once

#include <cstdint>
#include <deque>
#include <string>

#include "base/vector.h"

namespace kelvora {

enum class ParticleType : std::uint8_t { Background = 0, Network = 1, Explosion = 2, Reserved = 3 };

/// A small thing that floats in the world: a star, a quark, a ball or a piece of an explosion. Positions are world
/// units.
class clsParticle {
 public:
  // Quirk Q-266: both setters do the same.
  void setNum(double value) { num_ = value; }
  void num(double value) { num_ = value; }
  /// Initialises a particle sent by the server: position in world units, velocity in world units per frame.
  /// RuntimeFault "Overflow" for a kind outside 0 to 255.
  void initNormal(double number, const std::string& id, std::int16_t kind, float x, float y, float dx, float dy);
  /// Initialises one of the client's own particles and draws its random properties. Background particles choose their
  /// own position, others get (x, y). `a` and `b` are for the reserved type.
  void init(double number, ParticleType type, float x, float y, std::int16_t a = 0, std::int16_t b = 0);
  /// Draws a position around the local player, within the canvas's size on each side.
  void choosePosition();
  /// Draws a velocity of up to `maxSpeed` per component. Slow components of explosions are sped up.
  void chooseVelocity();
  /// Moves a background particle to the opposite side if it is farther from the local player than the field's size.
  void wrap();
  /// Draws a new depth and moves by up to 500 world units on both axes.
  void scatter();
  /// Free motion for one frame.
  void move();
  /// Motion along the server's positions for one frame.
  void moveNormal();
  /// The first position places the particle, later ones are queued. Ignores points outside the world.
  void queuePosition(Vector point);
  /// Paints the particle if it is on the canvas. An explosion particle may be removed from its pool by this call.
  void paintSelf();

  /// In canvas units.
  Vector getScreenPosition() const;
  const Vector& getPosition() const { return position; }

  double num_ = 0;                               ///< its index in its pool; counts from 1 for network particles
  ParticleType type = ParticleType::Background;  ///< may be another number from the console, which is not painted
  Vector position;
  std::uint8_t kind = 0;  ///< cell of the sheet of balls, 0 to 9
  float fieldWidth = 0;   ///< canvas size when the position was chosen, canvas units
  float fieldHeight = 0;
  Vector velocity;     ///< world units per frame
  float maxSpeed = 0;  ///< per component, world units per frame
  // Quirk Q-267: these two numbers and the previous position are never read.
  std::int16_t first = 0;
  std::int16_t second = 0;
  Vector previousPosition;                    ///< at the start of the latest `moveNormal`
  std::int16_t depth = 0;                     ///< 0 (near) to 16 (far)
  std::string id;                             ///< the server's id for it
  bool spawned = false;                       ///< false once the server has removed it
  std::uint8_t red = 0, green = 0, blue = 0;  ///< colour of a quark
  std::deque<Vector> positionQueue;           ///< received but not yet reached, next target first
  bool hasPosition = false;                   ///< the first position has arrived
  bool stepSet = false;                       ///< `moveNormal` has set a velocity for its current target
  bool blink = false;                         ///< toggles with every paint of an explosion particle
  std::int16_t age = 0;                       ///< number of paints, see `isWaiting`

 private:
  /// Counts one paint of an explosion particle and may remove it from its pool. True if it must not be drawn.
  bool isWaiting();
  void paintBackground(Vector place) const;
  void paintSpriteAt(Vector place, bool exchanged) const;
};

}  // namespace kelvora
