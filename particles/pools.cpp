#include "particles/pools.h"

#include <cstddef>

#include "base/numbers.h"
#include "core/bounds.h"
#include "core/modMain.h"
#include "particles/clsParticle.h"

namespace kelvora::modMain {

namespace {

constexpr std::size_t fieldSize = 150;

/// Null if there is no particle with this id.
clsParticle* findNetParticle(const std::string& id) {
  for (std::int16_t i = 0; i < world.netParticleCount; ++i) {
    clsParticle& particle = world.netParticles[static_cast<std::size_t>(i)];
    if (particle.id == id) return &particle;
  }
  return nullptr;
}

}  // namespace

void createParticleField() {
  world.particleCount = fieldSize;
  world.particles.assign(fieldSize + 1, {});  // one slot more than is used
  for (std::size_t i = 0; i < fieldSize; ++i) {
    world.particles[i].init(static_cast<double>(i), ParticleType::Background, 0, 0);
  }
}

void addExplosion(Vector point, std::int16_t count) {
  for (int i = 0; i < count && world.explosionParticles.size() < maxExplosionParticles; ++i) {
    world.explosionParticles.emplace_back().init(world.explosionCount, ParticleType::Explosion, point.x, point.y);
    world.explosionCount += 1;
  }
}

void removeExplosionParticle(std::int16_t index) {
  if (index >= 0 && static_cast<std::size_t>(index) < world.explosionParticles.size()) {
    world.explosionParticles.erase(world.explosionParticles.begin() + index);
  }
  world.explosionCount = 0;
  for (clsParticle& particle : world.explosionParticles) {
    particle.num(world.explosionCount);
    world.explosionCount += 1;
  }
}

std::int16_t allocNetParticle() {
  // Quirk Q-120: slots of removed particles are never reused, so the pool only grows.
  const std::int16_t slot = world.netParticleCount;
  world.netParticleCount = toInt16(slot + 1);
  world.netParticles.resize(static_cast<std::size_t>(world.netParticleCount));
  return slot;
}

void receiveParticleNew(const std::string& id, std::int16_t kind, float x, float y, float dx, float dy) {
  keepName(id);
  const std::int16_t slot = allocNetParticle();
  // Quirk Q-263: the number is the count after growing, so these particles are numbered from 1.
  world.netParticles[static_cast<std::size_t>(slot)].initNormal(world.netParticleCount, id, kind, x, y, dx, dy);
}

void receiveParticlePosition(const std::string& id, float x, float y) {
  if (clsParticle* particle = findNetParticle(id)) particle->queuePosition({x, y});
}

void receiveParticleRemove(const std::string& id) {
  // Quirk Q-121: nothing checks this flag. The particle follows its queue to the end and is painted there.
  if (clsParticle* particle = findNetParticle(id)) particle->spawned = false;
}

}  // namespace kelvora::modMain
