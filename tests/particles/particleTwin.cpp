#include "tests/particles/particleTwin.h"

#include <cmath>

namespace kelvora {

int TwinField::draw(double limit, int plus) {
  return static_cast<int>(std::floor(static_cast<double>(generator.next()) * limit + plus));
}

int TwinField::signedDraw(int value) { return draw(1000) < 501 ? -value : value; }

bool TwinField::coinFlip() { return draw(10000) + 1 < 5000; }

bool TwinField::isOnScreen(Vector point) const {
  const float dx = player.x - point.x;
  const float dy = player.y - point.y;
  const float x = std::floor(canvasWidth / 2) - dx;
  const float y = std::floor(canvasHeight / 2) - dy;
  return x >= 0 && x <= canvasWidth && y >= 0 && y <= canvasHeight;
}

void TwinField::init(TwinParticle& particle, double number, int type, float x, float y, int a, int b) {
  particle.num = number;
  particle.type = type;
  if (type == 0) {
    particle.red = draw(255);
    particle.green = draw(255);
    particle.blue = draw(255);
    particle.depth = draw(15) + 2;
  }
  if (type == 2) {
    particle.kind = draw(10);
    particle.first = 10;
  }
  if (type == 3) particle.first = a;
  if (type == 0) particle.maxSpeed = 15;
  if (type == 2) particle.maxSpeed = 100;
  if (type == 0) choosePosition(particle);
  if (type == 2 || type == 3) particle.position = {x, y};
  if (type == 3) {
    particle.second = b;
  } else {
    chooseVelocity(particle);
  }
}

void TwinField::choosePosition(TwinParticle& particle) {
  particle.fieldWidth = canvasWidth;
  particle.fieldHeight = canvasHeight;
  int ox = draw(canvasWidth);
  int oy = draw(canvasHeight);
  ox = signedDraw(ox);
  oy = signedDraw(oy);
  particle.position = {player.x - static_cast<float>(ox), player.y - static_cast<float>(oy)};
}

void TwinField::chooseVelocity(TwinParticle& particle) {
  int dx = draw(particle.maxSpeed, 1);
  dx = signedDraw(dx);
  int dy = draw(particle.maxSpeed, 1);
  dy = signedDraw(dy);
  if (particle.type == 2) {
    if (std::abs(dx) < 10) dx *= 15;
    if (std::abs(dy) < 10) dy *= 15;
  }
  particle.velocity = {static_cast<float>(dx), static_cast<float>(dy)};
}

void TwinField::wrap(TwinParticle& particle) {
  if (particle.type != 0) return;
  Vector& at = particle.position;
  if (std::fabs(player.x - at.x) > particle.fieldWidth) {
    const float reach = particle.fieldWidth - 300;
    at.x = player.x < at.x ? player.x - reach : player.x + reach;
    scatter(particle);
  }
  if (std::fabs(player.y - at.y) > particle.fieldHeight) {
    const float reach = particle.fieldHeight - 300;
    at.y = player.y < at.y ? player.y - reach : player.y + reach;
    scatter(particle);
  }
}

void TwinField::scatter(TwinParticle& particle) {
  int ox = draw(500);
  if (coinFlip()) ox = -ox;
  particle.position.x += static_cast<float>(ox);
  int oy = draw(500);
  if (coinFlip()) oy = -oy;
  particle.position.y += static_cast<float>(oy);
  particle.depth = draw(15) + 1;
  ++wrapped;
}

void TwinField::move(TwinParticle& particle) const {
  Vector& v = particle.velocity;
  const float limit = particle.maxSpeed;
  if (v.x > limit) v.x = limit;
  if (v.y > limit) v.y = limit;
  if (v.x < -limit) v.x = -limit;
  if (v.y < -limit) v.y = -limit;
  const auto factor = static_cast<float>((1.0 / 15) * (15 - particle.depth));
  particle.position.x = static_cast<float>(particle.position.x + v.x * timeScale * factor);
  particle.position.y = static_cast<float>(particle.position.y + v.y * timeScale * factor);
}

void TwinField::moveNormal(TwinParticle& particle) {
  Vector& at = particle.position;
  Vector& v = particle.velocity;
  std::vector<Vector>& queue = particle.positionQueue;
  if (particle.queueCount < 1) return;
  if (!particle.hasPosition) {
    particle.hasPosition = true;
    at = queue[static_cast<std::size_t>(particle.queueCount) - 1];
    return;
  }
  particle.previousPosition = at;
  if (v.x == 0 || v.y == 0) particle.stepSet = false;
  Vector target;
  while (particle.queueCount > 0) {
    if (isOnScreen(queue[0])) {
      target = queue[0];
      break;
    }
    at = queue[0];
    dropFirst(particle);
    particle.stepSet = false;
    ++jumps;
  }
  if (particle.queueCount < 1) return;
  const double dx = std::fabs(at.x - target.x);
  const double dy = std::fabs(at.y - target.y);
  const auto d = static_cast<float>(std::sqrt(dx * dx + dy * dy));
  if (d < 500) {
    at = queue[0];
    dropFirst(particle);
    target = queue[0];
    particle.stepSet = false;
    ++jumps;
  } else if (d > 10000) {
    at = target;
    dropFirst(particle);
    ++jumps;
    return;
  }
  if (particle.queueCount < 1) return;
  if (!particle.stepSet) {
    v.x = static_cast<float>((static_cast<double>(target.x) - at.x) / 7);
    v.y = static_cast<float>((static_cast<double>(target.y) - at.y) / 7);
    if (v.x == 0) v.x = target.x < at.x ? -1.0F : 1.0F;
    if (v.y == 0) v.y = target.y < at.y ? -1.0F : 1.0F;
    particle.stepSet = true;
  }
  v.x = static_cast<float>(v.x * timeScale);
  v.y = static_cast<float>(v.y * timeScale);
  constexpr float limit = 0;
  if (v.x > limit) v.x = 0;
  if (v.y > limit) v.y = 0;
  at.x += v.x;
  at.y += v.y;
  ++steps;
}

void TwinField::queuePosition(TwinParticle& particle, Vector point) const {
  if (!(0 <= point.x && point.x <= 100000 && 0 <= point.y && point.y <= 100000)) return;
  if (!particle.hasPosition) {
    particle.hasPosition = true;
    particle.position = point;
    return;
  }
  particle.positionQueue[static_cast<std::size_t>(particle.queueCount)] = point;
  particle.queueCount += 1;
  particle.positionQueue.emplace_back();
}

void TwinField::dropFirst(TwinParticle& particle) const {
  std::vector<Vector> copies;
  for (int i = 0; i < particle.queueCount; ++i) {
    if (i != 0) copies.push_back(particle.positionQueue[static_cast<std::size_t>(i)]);
  }
  particle.queueCount = 0;
  particle.positionQueue.assign(1, {});
  for (const Vector copy : copies) {
    particle.positionQueue.back() = copy;
    particle.positionQueue.emplace_back();
    particle.queueCount += 1;
  }
}

void TwinField::paintExplosion(int index) {
  TwinParticle& particle = explosionParticles.at(static_cast<std::size_t>(index));
  particle.blink = !particle.blink;
  // Half a second after midnight rounds to 0, ties to even.
  if (seconds <= 0.5) return;
  particle.age += 1;
  if (particle.age > 10) removeExplosionParticle(static_cast<int>(particle.num));
}

void TwinField::createParticleField() {
  particles.clear();
  for (int i = 0; i <= 149; ++i) {
    particles.emplace_back();
    init(particles.back(), i, 0, 0, 0, 0, 0);
  }
}

void TwinField::addExplosion(Vector point, int count) {
  for (int i = 1; i <= count; ++i) {
    const auto number = static_cast<double>(explosionParticles.size());
    explosionParticles.emplace_back();
    init(explosionParticles.back(), number, 2, point.x, point.y, 0, 0);
  }
}

void TwinField::removeExplosionParticle(int index) {
  std::vector<TwinParticle> copies;
  for (std::size_t i = 0; i < explosionParticles.size(); ++i) {
    if (static_cast<int>(i) != index) copies.push_back(explosionParticles[i]);
  }
  removed += static_cast<int>(explosionParticles.size() - copies.size());
  explosionParticles.clear();
  for (TwinParticle copy : copies) {
    copy.num = static_cast<double>(explosionParticles.size());
    explosionParticles.push_back(copy);
  }
}

void TwinField::receiveParticleNew(const std::string& id, int kind, float x, float y, float dx, float dy) {
  TwinParticle particle;
  particle.num = static_cast<double>(netParticles.size()) + 1;
  particle.id = id;
  particle.kind = kind;
  particle.position = {x, y};
  particle.velocity = {dx, dy};
  particle.type = 1;
  particle.spawned = true;
  netParticles.push_back(particle);
}

void TwinField::receiveParticlePosition(const std::string& id, float x, float y) {
  for (TwinParticle& particle : netParticles) {
    if (particle.id != id) continue;
    queuePosition(particle, {x, y});
    return;
  }
}

void TwinField::receiveParticleRemove(const std::string& id) {
  for (TwinParticle& particle : netParticles) {
    if (particle.id != id) continue;
    particle.spawned = false;
    return;
  }
}

}  // namespace kelvora
