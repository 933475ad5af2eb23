#pragma once

#include <map>
#include <vector>

#include "server/arena/player.h"

namespace kelvora::server {

// Whom charged tails, lasers and pulses reach. Nothing changes by asking.

struct Hit {
  Player* winner;
  Player* loser;
};

/// Whether a weapon can kill the player: alive, and without a shield.
bool isVulnerable(const Player& player, Millis now);

/// Hits by the mover's weapons, and hits on the mover on the way from there to where the mover is now.
std::vector<Hit> hitsOnTheWay(std::map<ClientId, Player>& players, Player& mover, Point from, Millis now);
/// Hits of everybody on everybody else, where they are now.
std::vector<Hit> hitsNow(std::map<ClientId, Player>& players, Millis now);
/// The living within reach of a pulse. The owner comes last.
std::vector<Player*> playersInPulse(std::map<ClientId, Player>& players, const Player& owner);

}  // namespace kelvora::server
