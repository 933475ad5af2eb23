#pragma once

#include <map>
#include <vector>

#include "server/arena/player.h"

namespace kelvora::server {

// Finds the players that charged tails, lasers and pulses hit. Changes nothing.

/// The winner's weapon kills the loser.
struct Hit {
  Player* winner;
  Player* loser;
};

/// True if a weapon can kill the player: alive and without a shield.
bool isVulnerable(const Player& player, Millis now);

/// Hits by the mover's weapons, and hits on the mover on the way from `from` to the current position.
std::vector<Hit> hitsOnTheWay(std::map<ClientId, Player>& players, Player& mover, Point from, Millis now);
/// Hits of everybody on everybody else at their current positions.
std::vector<Hit> hitsNow(std::map<ClientId, Player>& players, Millis now);
/// Living players within a pulse's range. The owner comes last.
std::vector<Player*> playersInPulse(std::map<ClientId, Player>& players, const Player& owner);

}  // namespace kelvora::server
