#pragma once

#include <cstdint>
#include <string>

#include "base/vector.h"

namespace kelvora {

class clsPlayer;

/// The local player's playerIndex. An opponent's is their slot in `opponents`.
inline constexpr std::int16_t localIndex = -1;

/// Players by the server's node and by playerIndex.
namespace modMain {

/// Fills in the names of the six player colours.
void fillColourNames();

/// The index of the connected player with this node; 0 if there is none.
std::int16_t getPlayerIndex(std::int16_t node);
/// The node of the player with this index; 0 if there is none or they have left.
std::int16_t getServerNode(std::int16_t index);
/// The name of the player with this index; empty beyond the last slot. RuntimeFault if there is no such player.
std::string getPlayerName(std::int16_t index);
/// The player with this index. RuntimeFault if there is none.
clsPlayer& playerAt(std::int16_t index);
/// The local player's position in world units.
Vector getLocalPosition();

}  // namespace modMain

}  // namespace kelvora
