#pragma once

#include <string_view>

#include "server/arena/roster.h"

namespace kelvora::server {

/// Relays a player's line to everybody, or only to one player and the sender.
void relayChat(Roster& roster, Player& sender, std::string_view fields, Millis now);

}  // namespace kelvora::server
