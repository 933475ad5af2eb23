#include "core/mainLoop.h"

#include <cstddef>

#include "core/modMain.h"
#include "core/players.h"
#include "frontend/gameSocket.h"
#include "platform/backend.h"
#include "platform/form.h"
#include "rendering/paintFrame.h"
#include "rendering/starsMode.h"
#include "simulation/clsPlayer.h"

namespace kelvora::modMain {

void runFrame() {
  if (world.localPlayer.isConnected) {
    world.localPlayer.move();
    world.localPlayer.tickPowerups();
  }
  for (std::int16_t index = 0, count = world.opponentCount; index < count; ++index) {
    clsPlayer& opponent = playerAt(index);
    if (!opponent.isConnected) continue;
    opponent.moveAsOpponent();
    opponent.tickPowerups();
  }

  // Quirk Q-221: particles move after painting, so they are shown one step behind the players.
  paintFrame();

  const bool particlesMove = !isStarsMode();
  for (std::size_t i = 0, count = static_cast<std::size_t>(world.particleCount); i < count; ++i) {
    world.particles[i].wrap();
    if (particlesMove) world.particles[i].move();
  }
  for (std::size_t i = 0, count = static_cast<std::size_t>(world.spareParticleCount); i < count; ++i) {
    world.spareParticles[i].move();
  }
  for (std::size_t i = 0, count = static_cast<std::size_t>(world.explosionCount); i < count; ++i) {
    world.explosionParticles[i].move();
  }
  for (std::size_t i = 0, count = static_cast<std::size_t>(world.netParticleCount); i < count; ++i) {
    world.netParticles[i].moveNormal();
  }
}

void mainLoop() {
  for (;;) {
    // Quirk Q-313: only a frame clears the radar and the game view, so both keep the last one.
    if (gameSocket().State() == sckConnected) runFrame();
    DoEvents(gameSocket().State() != sckConnected);
    releaseUnloadedForms();
  }
}

}  // namespace kelvora::modMain
