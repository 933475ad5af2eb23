#pragma once

#include "server/arena/roster.h"

namespace kelvora::server {

/// Pings a client when due: soon after the login, then five times a minute.
void pingIfDue(const Roster& roster, ClientId client, Session& session, Millis now);
/// Tells a client the round-trip time of the last ping.
void reportLatency(const Roster& roster, ClientId client, Session& session, Millis now);

}  // namespace kelvora::server
