#pragma once

#include <map>
#include <optional>
#include <vector>

#include "server/arena/pendingCaptures.h"
#include "server/arena/player.h"

namespace kelvora::server {

/// The opponents inside the loops that a player's last segment closes.
struct Enclosure {
  std::vector<Player*> losers;
  /// The vertex that identifies the captures to clients; nothing if none can be named.
  std::optional<Spot> vertex;
};

/// Finds the living opponents in these loops. Changes nothing.
Enclosure enclosedBy(const Player& winner, std::map<ClientId, Player>& players, const PendingCaptures& pending);

}  // namespace kelvora::server
