#pragma once

#include <cstddef>
#include <string>

#include "base/fault.h"
#include "core/modMain.h"

namespace kelvora::modMain {

// Limits on what a server can make the client store, in total. They are far above what any game needs, and keep a
// hostile server from filling the memory or making a frame last forever. Anything beyond a limit is dropped, or ends
// its message with a fault.
inline constexpr std::size_t maxTailVertices = 250'000;       ///< of all players
inline constexpr std::size_t maxQueuedPositions = 1'000'000;  ///< of all players and network particles
inline constexpr std::size_t maxKillerTails = 1'000;
inline constexpr std::size_t maxVictims = 1'000;  ///< of one killer tail
inline constexpr std::size_t maxExplosionParticles = 1'000;
inline constexpr std::size_t maxNameBytes = std::size_t{16} << 20;  ///< of opponents and network particles

/// Accounts for a name that is stored for good. RuntimeFault "Out of memory" beyond the limit.
inline void keepName(const std::string& name) {
  if (name.size() > maxNameBytes - world.nameBytes) raiseOutOfMemory();
  world.nameBytes += name.size();
}

}  // namespace kelvora::modMain
