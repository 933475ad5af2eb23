#pragma once

#include <string_view>

#include "server/arena/roster.h"

namespace kelvora::server {

/// Relays a player's line to everybody, or only to one player and the sender.
void relayChat(Roster& roster, Player& sender, std::string_view fields, Millis now);

/// Pings a player when due: soon after the login, then five times a minute.
void pingIfDue(Roster& roster, Player& player, Millis now);
/// Tells a player the round-trip time of the last ping.
void reportLatency(Roster& roster, Player& player, Millis now);

}  // namespace kelvora::server
