#pragma once

#include "server/arena/requestFields.h"
#include "server/arena/roster.h"

namespace kelvora::server {

/// Passes a player's line on to everybody, or to one player and back to the sender.
void relayChat(Roster& roster, Player& sender, const RequestFields& fields, Millis now);

/// Pings a player when that is due: soon after the login, then five times a minute.
void pingIfDue(Roster& roster, Player& player, Millis now);
/// Tells a player the time that the answer to the last ping has taken.
void reportLatency(Roster& roster, Player& player, Millis now);

}  // namespace kelvora::server
