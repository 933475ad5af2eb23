#pragma once

#include <cstdint>
#include <string>

#include "protocol/powerupTable.h"
#include "protocol/rules.h"

/// Handlers of the server's messages. Only processMessages calls them, and it swallows their faults. Players are
/// identified by node; an unknown node is taken for the first opponent, if there is one. Positions are world units.
/// They are defined in session.cpp, playerMessages.cpp and chat.cpp.
namespace kelvora::netMan {

void receiveLoginAccepted(PlayerColour colour, std::int16_t node, const std::string& name, float x, float y);
/// The newcomer is alive if `alive` is 1.
void receivePlayerJoined(std::int16_t node, PlayerColour colour, const std::string& name, float x, float y,
                         std::int16_t alive, std::int16_t kills);
void receivePlayerLeft(std::int16_t node);
void receiveRespawn(std::int16_t node);
void receiveRoundOver(const std::string& text);
void receivePosition(std::int16_t node, float x, float y);
/// World units per frame.
void receiveVelocity(std::int16_t node, float vx, float vy);
/// The local player becomes a ghost if `alive` is 0. RuntimeFault for an opponent.
void receiveAliveState(std::int16_t node, std::int16_t alive);
/// Credits.
void receiveFunds(std::int16_t node, double funds);
void receivePowerupOn(std::int16_t node, PowerupSlot item);
void receivePowerupOff(std::int16_t node, PowerupSlot item);
void receiveChat(std::int16_t node, const std::string& text);

}  // namespace kelvora::netMan
