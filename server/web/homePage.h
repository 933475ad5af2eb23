#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "server/web/http.h"

namespace kelvora::server {

/// The contents of the arena's page. Texts are in code page 1252.
struct HomePage {
  std::string notes;
  std::string address;  ///< where players reach the server; empty for the machine's own
  std::uint16_t port = 0;
  bool passwordRequired = false;
  std::vector<std::string> players;  ///< people only, as in lists
  std::vector<std::string> bots;
  std::size_t maxPlayers = 0;
};

/// A page with the arena, its players, and how to join.
HttpAnswer homePageAnswer(const HomePage& page);

}  // namespace kelvora::server
