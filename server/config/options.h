#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/outcome.h"
#include "server/arena/arenaRules.h"
#include "server/bots/botSettings.h"
#include "server/lists/hostRegistry.h"
#include "server/moderation/settings.h"
#include "server/replays/settings.h"

namespace kelvora::server {

/// The settings from the command line and the configuration file.
struct Options {
  std::string address = "127.0.0.1";
  std::uint16_t port = 2010;  ///< 0 for any free one
  std::string password;       ///< empty for none
  ArenaRules rules{.coach = true};
  BotSettings bots;
  ModerationSettings moderation;
  int drainSeconds = 0;     ///< for the round after SIGTERM; 0 to stop at once
  std::string recordsFile;  ///< path in UTF-8; empty for no records
  ReplaySettings replays;
  bool limitsReplays = false;                  ///< whether a limit of `replays` was given
  std::string replayFile;                      ///< path in UTF-8 of a round to show; empty to play
  std::optional<std::uint16_t> webPort;        ///< the second port; nothing for none, 0 for any free one
  std::optional<std::uint16_t> spectatorPort;  ///< nothing for the one after `port`, 0 for any free one
  std::string webAddress;                      ///< empty for `address`
  std::optional<std::string> site;  ///< folder of the page for browsers; empty for none, nothing for the usual one
  std::string allowOrigin = "*";    ///< pages that may open a WebSocket, separated by commas
  std::string trustedProxy;         ///< proxy whose header or line names its clients; empty for none
  std::string metricsFor;           ///< addresses that may read /metrics as well, separated by commas
  std::string publicAddress;        ///< empty for `address`
  std::string notes;
  std::string listKey;                                 ///< key that others must give to be listed here; empty for none
  std::size_t listSize = HostRegistry::usualMaxHosts;  ///< maximum number of servers in this server's list
  std::string publishUrls;                             ///< the lists' hosts, separated by commas
  std::string publishKey;
  std::string unlimitedFor;                 ///< addresses and networks without limits on connections and entries
  std::optional<std::uint16_t> agonesPort;  ///< where Agones listens for this server's reports, if it runs there
  std::string config;                       ///< path of the file that was read; empty for none
  bool hashPassword = false;
  bool help = false;
  bool version = false;

  std::uint16_t portOfSpectators() const {
    return spectatorPort.value_or(port == 0 ? std::uint16_t{0} : static_cast<std::uint16_t>(port + 1));
  }
};

/// Parses `arguments`, without the program's name, into new options. "--port 2010" and "--port=2010" are the same. If
/// they name a configuration file, it is read first, wherever its name appears, so that the command line overrides it.
Outcome parseOptions(std::span<const std::string> arguments, Options& options);

/// Takes the value of the environment variable with Agones' port, which overrides nothing else.
Outcome takeAgonesPort(const std::string& value, Options& options);

/// The text that "--help" prints.
std::string helpText();
/// The version of this build: three numbers separated by dots.
std::string versionText();

}  // namespace kelvora::server
