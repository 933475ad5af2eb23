#include <algorithm>
#include <cstddef>

#include "core/modMain.h"
#include "frontend/frmMain.h"
#include "platform/backend.h"

namespace kelvora::modMain {

// Quirk Q-033: never below 1. A machine that paints in less than 10 ms runs the game faster, not smoother.
double getTimeScale() { return std::max(frameTime / 10.0, 1.0); }

void runFrame() {
  if (localPlayer.isConnected) {
    localPlayer.move();
    localPlayer.tickPowerups();
  }
  for (std::int16_t index = 0, count = opponentCount; index < count; ++index) {
    clsPlayer& opponent = playerAt(index);
    if (!opponent.isConnected) continue;
    opponent.moveAsOpponent();
    opponent.tickPowerups();
  }

  // Quirk Q-221: particles move after the picture, so they are always shown one step behind the players.
  paintFrame();

  const bool particlesMove = !isStarsMode();
  for (std::size_t i = 0, count = static_cast<std::size_t>(particleCount); i < count; ++i) {
    particles[i].wrap();
    if (particlesMove) particles[i].move();
  }
  for (std::size_t i = 0, count = static_cast<std::size_t>(spareParticleCount); i < count; ++i) {
    spareParticles[i].move();
  }
  for (std::size_t i = 0, count = static_cast<std::size_t>(explosionCount); i < count; ++i) {
    explosionParticles[i].move();
  }
  for (std::size_t i = 0, count = static_cast<std::size_t>(netParticleCount); i < count; ++i) {
    netParticles[i].moveNormal();
  }
}

void mainLoop() {
  for (;;) {
    if (frmMain->sock.State() == sckConnected) runFrame();
    DoEvents(frmMain->sock.State() != sckConnected);
    releaseUnloadedForms();
  }
}

}  // namespace kelvora::modMain
