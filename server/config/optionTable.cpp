#include "server/config/optionTable.h"

#include <array>

#include "base/codePage.h"
#include "base/numberFromText.h"
#include "protocol/wireFormat.h"
#include "server/config/addressList.h"
#include "server/config/commaList.h"
#include "server/lists/announcement.h"
#include "server/system/passwords.h"

namespace kelvora::server {

namespace {

constexpr int maxPort = 65'535;
constexpr int maxTextLength = 255;    // bytes
constexpr int maxSeconds = 86'400;    // seconds
constexpr int maxPathLength = 4'096;  // bytes
constexpr int maxSpectators = 64;     // of the connections, so that the others suffice for players

using Text = Option::Text;
using Letters = Option::Letters;
using Whole = Option::Whole;
using Decimal = Option::Decimal;
using Switch = Option::Switch;

Outcome checkHash(const std::string& hash) {
  if (!canHashPasswords()) return Outcome::refused("needs password hashes, which this system doesn't have");
  if (!isPasswordHash(hash)) return Outcome::refused("must be what kelvora-server --hash-password prints");
  return Outcome::done();
}

Outcome checkPublicAddress(const std::string& address) {
  if (isListable(address)) return Outcome::done();
  return Outcome::refused("must have letters, digits, points, colons and hyphens only");
}

Outcome checkAddress(const std::string& address) {
  boost::system::error_code error;
  boost::asio::ip::make_address(address, error);
  return error ? Outcome::refused("must be an IP address") : Outcome::done();
}

Outcome checkAddresses(const std::string& addresses) {
  if (AddressList::read(addresses)) return Outcome::done();
  return Outcome::refused("needs IP addresses and networks, such as 192.0.2.7 and 10.0.0.0/8, or *");
}

Outcome checkUrls(const std::string& urls) {
  for (const std::string& url : commaList(urls)) {
    if (url.starts_with("http://") || url.starts_with("https://")) continue;
    return Outcome::refused("needs URLs that begin with http:// or https://");
  }
  return Outcome::done();
}

Outcome checkOrigins(const std::string& origins) {
  for (const std::string& origin : commaList(origins)) {
    if (origin == "*" || origin.starts_with("http://") || origin.starts_with("https://")) continue;
    return Outcome::refused("needs origins such as https://games.example, or *");
  }
  return Outcome::done();
}

template <int ReplaySettings::*limit>
void recordLimit(Options& options, int value) {
  options.replays.*limit = value;
  options.limitsReplays = true;
}

Option heading(std::string_view text) {
  return {"", "", text, Switch([](Options&) {})};
}

// One row per option: name, value, help, target, and the value's range. `play` looks up names in this source: each
// row begins a line with its name and its value.
const std::array table = {
    heading("Connections:"),
    Option{"address", "ADDRESS", "address to listen on (127.0.0.1)",  //
           Text([](Options& o) -> std::string& { return o.address; }), 0, maxTextLength},
    Option{"port", "PORT", "TCP port, up to 32766 for the game and lists, 0 for any free one (2010)",  //
           Whole([](Options& o, int value) { o.port = static_cast<std::uint16_t>(value); }), 0, maxPort},
    Option{"password", "PASSWORD", "password that players need (none)",
           Letters{[](Options& o) -> std::string& { return o.password; }, true}, 0, maxTextLength},
    Option{"web-port", "PORT", "second port with the same services (none)",
           Whole([](Options& o, int value) { o.webPort = static_cast<std::uint16_t>(value); }), 0, maxPort},
    Option{"web-address", "ADDRESS", "address to listen on for the second port (as --address)",
           Text([](Options& o) -> std::string& { return o.webAddress; }), 0, maxTextLength},
    Option{"trusted-proxy", "ADDRESS", "IP address of a proxy that names its clients (none)",
           Text([](Options& o) -> std::string& { return o.trustedProxy; }), 0, maxTextLength, checkAddress},
    Option{"metrics-for", "ADDRESSES",
           "addresses and networks that may read /metrics, besides this machine; * for all (none)",
           Text([](Options& o) -> std::string& { return o.metricsFor; }), 0, maxPathLength, checkAddresses},
    Option{"unlimited-for", "ADDRESSES", "IP addresses and networks without the limits per address; * for all (none)",
           Text([](Options& o) -> std::string& { return o.unlimitedFor; }), 0, maxPathLength, checkAddresses},

    heading("Game:"),
    Option{"round-seconds", "SECONDS", "length of a round (180)",
           Whole([](Options& o, int value) { o.rules.roundMs = Millis{1000} * value; }), 1, maxSeconds},
    Option{"captures-to-win", "COUNT", "captures that end a round, 0 for time only (10)",
           Whole([](Options& o, int value) { o.rules.captureGoal = value; }), 0, 1'000},
    Option{"intermission", "SECONDS", "pause between rounds (12)",
           Whole([](Options& o, int value) { o.rules.intermissionMs = Millis{1000} * value; }), 0, maxSeconds},
    Option{"respawn-wait", "SECONDS", "minimum time from death to respawn (3)",
           Whole([](Options& o, int value) { o.rules.respawnWaitMs = Millis{1000} * value; }), 0, maxSeconds},
    Option{"income", "CREDITS", "credits per minute for a living player (5)",
           Whole([](Options& o, int value) { o.rules.incomePerMinute = value; }), 0, 6'000},
    Option{"speed-limit", "FACTOR", "maximum sustained speed in multiples of the game's, 0 for no limit (3)",
           Decimal([](Options& o, double value) { o.rules.speedFactor = value; }), 0, 1'000},
    Option{"bots", "COUNT", "number of bots while people play (0)",
           Whole([](Options& o, int value) { o.bots.count = value; }), 0, BotSettings::maxCount},
    Option{"skill", "easy|normal|hard|mixed", "skill of the bots (mixed)",
           Option::Word{[](Options& o, int index) { o.bots.skill = static_cast<SkillLevel>(index); }}},

    Option{"coach", "on|off", "tell newcomers what to do (on)",
           Option::Word{[](Options& o, int index) { o.rules.coach = index == 0; }}},
    Option{"no-coach", "", "the same as --coach off", Switch([](Options& o) { o.rules.coach = false; })},
    Option{"spectators", "COUNT", "maximum number of people who may watch (0)",
           Whole([](Options& o, int value) { o.rules.spectators = value; }), 0, maxSpectators},
    Option{"spectator-port", "PORT", "TCP port to watch on, 0 for any free one (the one after --port)",
           Whole([](Options& o, int value) { o.spectatorPort = static_cast<std::uint16_t>(value); }), 0, maxPort},

    heading("Moderation:"),
    Option{"moderator", "HASH", "hash of the moderators' password, see --hash-password (none)",
           Text([](Options& o) -> std::string& { return o.moderation.moderatorHash; }), 0, maxTextLength, checkHash},
    Option{"bans", "FILE", "file that keeps bans and mutes (none)",
           Text([](Options& o) -> std::string& { return o.moderation.bansFile; }), 0, maxPathLength},

    Option{"records", "FILE", "file that keeps the players' records and claimed names (none)",
           Text([](Options& o) -> std::string& { return o.recordsFile; }), 0, maxPathLength},

    heading("Recordings:"),
    Option{"record", "FOLDER", "folder that keeps each round (none)",
           Text([](Options& o) -> std::string& { return o.replays.folder; }), 0, maxPathLength},
    Option{"record-count", "COUNT", "maximum number of rounds in it (100)",
           Whole(recordLimit<&ReplaySettings::maxCount>), 1, 100'000},
    Option{"record-size", "MIB", "maximum size of all rounds in it (100)",
           Whole(recordLimit<&ReplaySettings::maxMebibytes>), 1, 1'000'000},
    Option{"replay", "FILE", "show this round to everybody who connects, instead of a game (none)",
           Text([](Options& o) -> std::string& { return o.replayFile; }), 0, maxPathLength},

    heading("Browsers:"),
    Option{"site", "FOLDER", "folder of the page for browsers (the one that belongs to the program)",
           Text([](Options& o) -> std::string& { return o.site ? *o.site : o.site.emplace(); }), 0, maxPathLength},
    Option{"no-site", "", "serve no page to play in browsers", Switch([](Options& o) { o.site = ""; })},
    Option{"allow-origin", "ORIGINS", "web pages that may play here, separated by commas, * for all (*)",
           Text([](Options& o) -> std::string& { return o.allowOrigin; }), 0, maxPathLength, checkOrigins},

    heading("List of games:"),
    Option{"public-address", "ADDRESS", "this server's address in lists (as --address)",
           Text([](Options& o) -> std::string& { return o.publicAddress; }), 0, maxTextLength, checkPublicAddress},
    Option{"notes", "TEXT", "description in lists (none)",
           Letters{[](Options& o) -> std::string& { return o.notes; }, false}, 0, int{maxNotesLength}},
    Option{"list-key", "KEY", "key that other servers need to join this server's list (none)",
           Text([](Options& o) -> std::string& { return o.listKey; }), 0, maxTextLength},
    Option{"list-size", "COUNT", "maximum number of other servers in this server's list (1000)",
           Whole([](Options& o, int value) { o.listSize = static_cast<std::size_t>(value); }), 0, 100'000},
    Option{"publish", "URLS", "lists to announce this server to, http://HOST:PORT, separated by commas (none)",
           Text([](Options& o) -> std::string& { return o.publishUrls; }), 0, maxPathLength, checkUrls},
    Option{"publish-key", "KEY", "key of these lists (none)",
           Text([](Options& o) -> std::string& { return o.publishKey; }), 0, maxTextLength},

    heading("Other:"),
    Option{"drain", "SECONDS", "time for the round to end after SIGTERM, without newcomers (0)",
           Whole([](Options& o, int value) { o.drainSeconds = value; }), 0, maxSeconds},
    Option{"config", "FILE", "read options from lines \"name = value\"; the command line overrides them (none)",
           Text([](Options& o) -> std::string& { return o.config; }), 1, maxPathLength},
    Option{"hash-password", "", "read a password and print its hash",
           Switch([](Options& o) { o.hashPassword = true; })},
    Option{"help", "", "print this help", Switch([](Options& o) { o.help = true; })},
    Option{"version", "", "print the version, which clients must match", Switch([](Options& o) { o.version = true; })},
};

std::string range(const Option& option) {
  return " from " + std::to_string(option.min) + " to " + std::to_string(option.max);
}

/// Sets an option according to its kind, or refuses the value with a reason.
struct Set {
  Options& options;
  const Option& option;
  const std::string& value;

  Outcome operator()(Switch set) const {
    if (!value.empty()) return Outcome::refused("takes no value");
    set(options);
    return Outcome::done();
  }
  Outcome operator()(Text target) const {
    if (value.size() > static_cast<std::size_t>(option.max)) {
      return Outcome::refused("must not be longer than " + std::to_string(option.max) + " bytes");
    }
    if (value.size() < static_cast<std::size_t>(option.min)) return Outcome::refused("must not be empty");
    if (option.check != nullptr && !value.empty()) {
      if (Outcome outcome = option.check(value); outcome.isRefused()) return outcome;
    }
    target(options) = value;
    return Outcome::done();
  }
  Outcome operator()(const Letters& letters) const {
    const auto bytes = codePageFromUtf8(value);
    if (!bytes) return Outcome::refused("must be UTF-8 text with letters of code page 1252 only");
    if (letters.inLogins &&
        bytes->find_first_of({wire::frameStart, wire::frameEnd, wire::fieldSeparator}) != bytes->npos)
      return Outcome::refused("must not contain a euro sign or a low quotation mark, which no player can send");
    return Set{options, option, *bytes}(letters.target);
  }
  Outcome operator()(Whole set) const {
    const auto number = numberFromText<int>(value);
    if (!number || *number < option.min || *number > option.max)
      return Outcome::refused("must be a whole number" + range(option));
    set(options, *number);
    return Outcome::done();
  }
  Outcome operator()(Decimal set) const {
    const auto number = numberFromText<double>(value);
    // NaN fails every comparison.
    if (!number || !(*number >= option.min && *number <= option.max))
      return Outcome::refused("must be a number" + range(option));
    set(options, *number);
    return Outcome::done();
  }
  Outcome operator()(Option::Word word) const {
    std::string_view words = option.valueName;
    for (int index = 0; !words.empty(); ++index) {
      const std::size_t end = std::min(words.find('|'), words.size());
      if (words.substr(0, end) == value) {
        word.set(options, index);
        return Outcome::done();
      }
      words.remove_prefix(std::min(end + 1, words.size()));
    }
    return Outcome::refused("must be one of " + std::string(option.valueName));
  }
};

}  // namespace

std::span<const Option> optionTable() { return table; }

Outcome setOption(Options& options, const Option& option, const std::string& value) {
  return std::visit(Set{options, option, value}, option.target);
}

}  // namespace kelvora::server
