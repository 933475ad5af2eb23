#pragma once

#include <cstdint>
#include <string>

#include "base/vector.h"

/// The pools of particles: the background, explosions, and particles moved by the server.
namespace kelvora::modMain {

/// Fills the background with 150 new particles around the local player.
void createParticleField();
/// Adds `count` explosion particles at a world point, as far as the limit allows.
void addExplosion(Vector point, std::int16_t count);
/// Removes one explosion particle and renumbers the others. Does nothing if there is no such particle.
void removeExplosionParticle(std::int16_t index);

/// Adds an empty slot for a server particle and returns its index. RuntimeFault "Overflow" beyond 32767.
std::int16_t allocNetParticle();
/// Handle the server's messages. Positions are world units. Unknown ids are ignored.
void receiveParticleNew(const std::string& id, std::int16_t kind, float x, float y, float dx, float dy);
void receiveParticlePosition(const std::string& id, float x, float y);
void receiveParticleRemove(const std::string& id);

}  // namespace kelvora::modMain
