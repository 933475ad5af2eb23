#pragma once

#include <cstdint>

namespace kelvora::server {

/// One connection, whether its player is logged in or not. Never used twice.
using ClientId = std::uint32_t;

/// Connections from here on are the server's own bots, which make room for people.
inline constexpr ClientId firstBotClient = 0x8000'0000;
constexpr bool isBot(ClientId client) { return client >= firstBotClient; }

}  // namespace kelvora::server
