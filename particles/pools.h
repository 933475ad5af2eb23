#pragma once

#include <cstdint>
#include <string>

#include "base/vector.h"

/// The pools of particles: the background field, explosions, and those that the server moves.
namespace kelvora::modMain {

/// Fills the background with 150 new particles round the local player.
void createParticleField();
/// Adds `count` explosion particles at a world point, as far as the bound allows.
void addExplosion(Vector point, std::int16_t count);
/// Takes one explosion particle out and numbers the others anew. An index without a particle takes none out.
void removeExplosionParticle(std::int16_t index);

/// Adds an empty slot to the server's particles and returns it. RuntimeFault "Overflow" beyond 32767.
std::int16_t allocNetParticle();
/// The server's messages; an unknown id is ignored. Places are world units.
void receiveParticleNew(const std::string& id, std::int16_t kind, float x, float y, float dx, float dy);
void receiveParticlePosition(const std::string& id, float x, float y);
void receiveParticleRemove(const std::string& id);

}  // namespace kelvora::modMain
