#pragma once

#include <cstdint>

namespace kelvora::server {

/// A connection, logged in or not. Ids are never reused.
using ClientId = std::uint32_t;

/// Ids from here on are the server's own bots, which make room for people.
inline constexpr ClientId firstBotClient = 0x8000'0000;
constexpr bool isBot(ClientId client) { return client >= firstBotClient; }

/// The server's own recorder, which gets what all players get.
inline constexpr ClientId observerClient = firstBotClient - 1;

/// The purpose of a login.
enum class Role : std::uint8_t { player, spectator };

}  // namespace kelvora::server
