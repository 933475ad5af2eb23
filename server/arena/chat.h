#pragma once

#include <string_view>

#include "server/arena/roster.h"

namespace kelvora::server {

/// Relays a player's line to everybody, or only to one player and the sender. Commands and the lines of muted people
/// reach nobody. Muted people are told so once.
void relayChat(Roster& roster, Player& sender, std::string_view fields, Millis now);
/// Relays a spectator's line to all spectators. Players don't get it.
void relayChat(Roster& roster, Spectator& sender, std::string_view fields, Millis now);

}  // namespace kelvora::server
