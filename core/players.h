#pragma once

#include <cstdint>
#include <string>

#include "base/vector.h"

namespace kelvora {

class clsPlayer;

/// Players by the server's node and by playerIndex: -1 for the local player, else a slot of `opponents`.
namespace modMain {

/// Names the six player colours.
void fillColourNames();

/// The index of the player with this node; 0 if no connected player has it.
std::int16_t getPlayerIndex(std::int16_t node);
/// The node of the player with this index; 0 if there is none or they have left.
std::int16_t getServerNode(std::int16_t index);
/// Empty for an index above the last slot; RuntimeFault for one below -1.
std::string getPlayerName(std::int16_t index);
/// RuntimeFault if no player has this index.
clsPlayer& playerAt(std::int16_t index);
/// Where the local player is, world units.
Vector getLocalPosition();

}  // namespace modMain

}  // namespace kelvora
