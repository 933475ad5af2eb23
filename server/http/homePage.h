#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "server/http/http.h"

namespace kelvora::server {

/// Records of some players.
struct RecordTable {
  struct Row {
    std::string name;
    std::int64_t captures;
    std::int64_t wins;
    std::int64_t rounds;
    std::int64_t minutes;
  };
  std::string title;
  std::vector<Row> rows;
};

/// The contents of the arena's page. Texts are in code page 1252.
struct HomePage {
  std::string notes;
  std::string address;  ///< where players reach the server; empty for the machine's own
  std::uint16_t port = 0;
  bool passwordRequired = false;
  bool hasSite = false;              ///< there is a page to play in at "/"
  std::uint16_t spectatorPort = 0;   ///< 0 for none
  std::vector<std::string> players;  ///< people only, as in lists
  std::vector<std::string> bots;
  std::vector<RecordTable> records;
  std::size_t maxPlayers = 0;
};

/// A page with the arena, its players, and how to join.
HttpAnswer homePageAnswer(const HomePage& page);

}  // namespace kelvora::server
