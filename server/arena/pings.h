#pragma once

#include "server/arena/roster.h"

namespace kelvora::server {

/// Pings a player when due: soon after the login, then five times a minute.
void pingIfDue(Roster& roster, Player& player, Millis now);
/// Tells a player the round-trip time of the last ping.
void reportLatency(Roster& roster, Player& player, Millis now);

}  // namespace kelvora::server
