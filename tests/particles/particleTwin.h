#pragma once

#include <string>
#include <vector>

#include "base/randomGenerator.h"
#include "base/vector.h"

namespace kelvora {

/// The twin's counterpart of clsParticle.
struct TwinParticle {
  double num = 0;
  int type = 0;
  Vector position;
  int kind = 0;
  float fieldWidth = 0, fieldHeight = 0;
  Vector velocity;
  float maxSpeed = 0;
  int first = 0, second = 0;
  int depth = 0;
  std::string id;
  bool spawned = false;
  int red = 0, green = 0, blue = 0;
  Vector previousPosition;
  int queueCount = 0;
  std::vector<Vector> positionQueue{1};
  bool hasPosition = false;
  bool blink = false;
  int age = 0;
  bool stepSet = false;
};

/// An independent reimplementation of the particle field: literal and slow. It has its own generator, so both stay
/// equal only if they draw the same numbers in the same order.
class TwinField {
 public:
  // The outside world.
  RandomGenerator generator;
  double timeScale = 1;
  double seconds = 0;  ///< since midnight
  float canvasWidth = 0, canvasHeight = 0;
  Vector player;

  std::vector<TwinParticle> particles, explosionParticles, netParticles;
  // How often each branch was taken.
  int wrapped = 0, steps = 0, jumps = 0, removed = 0;

  bool coinFlip();
  void init(TwinParticle& particle, double number, int type, float x, float y, int a, int b);
  void wrap(TwinParticle& particle);
  void move(TwinParticle& particle) const;
  void moveNormal(TwinParticle& particle);
  void queuePosition(TwinParticle& particle, Vector point) const;
  /// The effect of a paint on an explosion particle.
  void paintExplosion(int index);

  void createParticleField();
  void addExplosion(Vector point, int count);
  void removeExplosionParticle(int index);
  void receiveParticleNew(const std::string& id, int kind, float x, float y, float dx, float dy);
  void receiveParticlePosition(const std::string& id, float x, float y);
  void receiveParticleRemove(const std::string& id);

 private:
  int draw(double limit, int plus = 0);
  int signedDraw(int value);
  bool isOnScreen(Vector point) const;
  void choosePosition(TwinParticle& particle);
  void chooseVelocity(TwinParticle& particle);
  void scatter(TwinParticle& particle);
  void dropFirst(TwinParticle& particle) const;
};

}  // namespace kelvora
