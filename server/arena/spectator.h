#pragma once

#include <cstdint>
#include <string>

#include "server/arena/clientId.h"
#include "server/arena/session.h"

namespace kelvora::server {

/// The node that each spectator's client has for itself. No player has it.
inline constexpr std::int16_t spectatorNode = -1;

/// Somebody who sees everything and plays no part.
struct Spectator {
  ClientId client = 0;
  std::string name;
  Session session{};
};

}  // namespace kelvora::server
