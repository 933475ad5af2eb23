#pragma once

#include <string_view>

#include "server/arena/roster.h"

namespace kelvora::server {

/// Relays a player's line to everybody, or only to one player and the sender. Commands and the lines of muted players
/// reach nobody. A muted player is told so once.
void relayChat(Roster& roster, Player& sender, std::string_view fields, Millis now);

}  // namespace kelvora::server
