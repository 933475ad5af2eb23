#include "particles/clsParticle.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "core/chance.h"
#include "core/glide.h"
#include "core/players.h"
#include "core/timeScale.h"
#include "core/view.h"

namespace kelvora {

namespace {

constexpr float backgroundSpeed = 15;
constexpr float explosionSpeed = 100;
constexpr float slowestBlast = 10;
constexpr float blastFactor = 15;
constexpr float wrapInset = 300;

// Quirk Q-116: a sign is negative 501 times in 1000, while coinFlip is True 4999 times in 10000.
float withDrawnSign(float value) { return drawBelow(1000) < 501 ? -value : value; }

float scatterOffset() {
  const float offset = static_cast<float>(drawBelow(500));
  return modMain::coinFlip() ? -offset : offset;
}

}  // namespace

void clsParticle::initNormal(double number, const std::string& newId, std::int16_t newKind, float x, float y, float dx,
                             float dy) {
  num_ = number;
  id = newId;
  // Quirk Q-301: an unknown kind is a fault before the type is set, so the particle keeps type 0 and is painted as
  // background.
  kind = toByte(newKind);
  position = {x, y};
  velocity = {dx, dy};
  type = ParticleType::Network;
  spawned = true;
  hasPosition = false;
  positionQueue.clear();
}

void clsParticle::init(double number, ParticleType newType, float x, float y, std::int16_t a, std::int16_t b) {
  num_ = number;
  type = newType;
  const bool isBackground = type == ParticleType::Background;
  const bool isExplosion = type == ParticleType::Explosion;
  const bool isReserved = type == ParticleType::Reserved;
  if (isBackground) {
    red = static_cast<std::uint8_t>(drawBelow(255));
    green = static_cast<std::uint8_t>(drawBelow(255));
    blue = static_cast<std::uint8_t>(drawBelow(255));
    depth = static_cast<std::int16_t>(drawBelow(15) + 2);
  }
  if (isExplosion) {
    kind = static_cast<std::uint8_t>(drawBelow(10));
    first = 10;
  }
  if (isReserved) first = a;
  if (isBackground) maxSpeed = backgroundSpeed;
  if (isExplosion) maxSpeed = explosionSpeed;
  if (isBackground) choosePosition();
  if (isExplosion || isReserved) position = {x, y};
  if (isReserved) {
    second = b;
  } else {
    // Quirk Q-307: also for a network particle, which keeps its position.
    chooseVelocity();
  }
}

void clsParticle::choosePosition() {
  // Quirk Q-262: the field gets the canvas's current size and keeps it when the window grows.
  const Vector field = modMain::getCanvasSize();
  fieldWidth = field.x;
  fieldHeight = field.y;
  float across = static_cast<float>(drawBelow(fieldWidth));
  float down = static_cast<float>(drawBelow(fieldHeight));
  across = withDrawnSign(across);
  down = withDrawnSign(down);
  const Vector centre = modMain::getLocalPosition();
  position = {centre.x - across, centre.y - down};
}

void clsParticle::chooseVelocity() {
  const auto component = [this] {
    return withDrawnSign(static_cast<float>(std::floor(static_cast<double>(Rnd()) * maxSpeed + 1)));
  };
  velocity.x = component();
  velocity.y = component();
  if (type != ParticleType::Explosion) return;
  if (std::fabs(velocity.x) < slowestBlast) velocity.x *= blastFactor;
  if (std::fabs(velocity.y) < slowestBlast) velocity.y *= blastFactor;
}

void clsParticle::wrap() {
  if (type != ParticleType::Background) return;
  const Vector centre = modMain::getLocalPosition();
  if (std::fabs(centre.x - position.x) > fieldWidth) {
    const float far = fieldWidth - wrapInset;
    position.x = centre.x < position.x ? centre.x - far : centre.x + far;
    scatter();
  }
  if (std::fabs(centre.y - position.y) > fieldHeight) {
    const float far = fieldHeight - wrapInset;
    position.y = centre.y < position.y ? centre.y - far : centre.y + far;
    scatter();
  }
}

void clsParticle::scatter() {
  position.x += scatterOffset();
  position.y += scatterOffset();
  depth = static_cast<std::int16_t>(drawBelow(15) + 1);
}

void clsParticle::move() {
  velocity.x = std::max(std::min(velocity.x, maxSpeed), -maxSpeed);
  velocity.y = std::max(std::min(velocity.y, maxSpeed), -maxSpeed);
  // Quirk Q-117: depth 15 stands still, and depth 16 drifts slowly backwards.
  const float factor = static_cast<float>((1.0 / 15) * (15 - depth));
  const double timeScale = modMain::getTimeScale();
  position.x = static_cast<float>(position.x + velocity.x * timeScale * factor);
  position.y = static_cast<float>(position.y + velocity.y * timeScale * factor);
}

void clsParticle::moveNormal() {
  if (positionQueue.empty()) return;
  if (!hasPosition) {
    hasPosition = true;
    position = positionQueue.back();
    return;
  }
  previousPosition = position;
  // Quirk Q-118: the limit was never set and is 0, so server particles only jump to the right and downward.
  constexpr float limit = 0;
  modMain::glide({position, velocity, positionQueue, stepSet, limit}, [] {});
}

void clsParticle::queuePosition(Vector point) {
  if (!modMain::isInWorld(point)) return;
  if (!hasPosition) {
    hasPosition = true;
    position = point;
    return;
  }
  modMain::addTarget(positionQueue, point);
}

}  // namespace kelvora
