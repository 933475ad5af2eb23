#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "base/outcome.h"
#include "server/arena/arenaRules.h"
#include "server/bots/botWishes.h"

namespace kelvora::server {

/// What the command line and the configuration file ask for.
struct Options {
  std::string address = "127.0.0.1";
  std::uint16_t port = 2010;  ///< 0 for any free one
  std::string password;       ///< empty: none is asked for
  ArenaRules rules;
  BotWishes bots;
  std::optional<std::uint16_t> webPort;  ///< of the second port; none: there is none; 0 for any free one
  std::string webAddress;                ///< empty: `address`
  std::string site;                      ///< folder of files to serve by HTTP; empty: none
  std::string allowOrigin = "*";         ///< pages that may open a WebSocket, between commas
  std::string trustedProxy;              ///< whose word on its clients' addresses counts; empty: nobody's
  std::string publicAddress;             ///< empty: `address`
  std::string notes;
  std::string listKey;     ///< that others must give to be listed here; empty: none
  std::string publishUrl;  ///< of the list's host; empty: no list but its own
  std::string publishKey;
  std::string config;  ///< the file that was read; empty: none
  bool help = false;
  bool version = false;
};

/// Reads `arguments`, without the program's name, into fresh options; "--port 2010" and "--port=2010" are the same. The
/// configuration file, if they name one, is read first, wherever its name stands among them: the command line wins.
Outcome parseOptions(std::span<const char* const> arguments, Options& options);

std::string helpText();
/// "1.2.1"
std::string versionText();

}  // namespace kelvora::server
