#include "server/config/optionTable.h"

#include <array>

#include "base/codePage.h"
#include "base/wholeNumber.h"
#include "protocol/wireFormat.h"
#include "server/lists/announcement.h"

namespace kelvora::server {

namespace {

constexpr int maxPort = 65'535;
constexpr int maxTextLength = 255;    // bytes
constexpr int maxSeconds = 86'400;    // seconds
constexpr int maxPathLength = 4'096;  // bytes

using Text = Option::Text;
using Letters = Option::Letters;
using Whole = Option::Whole;
using Decimal = Option::Decimal;
using Switch = Option::Switch;

Option heading(std::string_view text) {
  return {"", "", text, Switch([](Options&) {})};
}

// One row per option: name, value, help, target, and the value's range.
const std::array table = {
    heading("Where players come in:"),
    Option{"address", "ADDRESS", "where to listen (127.0.0.1)",  //
           Text([](Options& o) -> std::string& { return o.address; }), 0, maxTextLength},
    Option{"port", "PORT", "TCP port, 0 for any free one (2010)",  //
           Whole([](Options& o, int value) { o.port = static_cast<std::uint16_t>(value); }), 0, maxPort},
    Option{"password", "PASSWORD", "what players must give to get in (none)",
           Letters{[](Options& o) -> std::string& { return o.password; }, true}, 0, maxTextLength},

    heading("The game:"),
    Option{"round-seconds", "SECONDS", "how long a round is played (180)",
           Whole([](Options& o, int value) { o.rules.roundMs = Millis{1000} * value; }), 1, maxSeconds},
    Option{"captures-to-win", "COUNT", "captures that win a round at once, 0 for no such end (10)",
           Whole([](Options& o, int value) { o.rules.captureGoal = value; }), 0, 1'000},
    Option{"intermission", "SECONDS", "between two rounds (12)",
           Whole([](Options& o, int value) { o.rules.intermissionMs = Millis{1000} * value; }), 0, maxSeconds},
    Option{"respawn-wait", "SECONDS", "from a death to the respawn, at the least (3)",
           Whole([](Options& o, int value) { o.rules.respawnWaitMs = Millis{1000} * value; }), 0, maxSeconds},
    Option{"income", "CREDITS", "what a living player earns a minute (5)",
           Whole([](Options& o, int value) { o.rules.incomePerMinute = value; }), 0, 6'000},
    Option{"speed-limit", "FACTOR", "how many times the game's own speed a player may keep up, 0 for any (3)",
           Decimal([](Options& o, double value) { o.rules.speedFactor = value; }), 0, 1'000},
    Option{"bots", "COUNT", "opponents that the server itself plays, while there are people in (0)",
           Whole([](Options& o, int value) { o.bots.count = value; }), 0, BotWishes::most},
    Option{"skill", "easy|normal|hard|mixed", "how well they play (mixed)",
           Option::Word{[](Options& o, int index) { o.bots.skill = static_cast<SkillLevel>(index); }}},

    heading("The list of games:"),
    Option{"web-port", "PORT", "listen on a second port, for clients that look for the list on it (none)",
           Whole([](Options& o, int value) { o.webPort = static_cast<std::uint16_t>(value); }), 0, maxPort},
    Option{"web-address", "ADDRESS", "where to listen on the second port (as --address)",
           Text([](Options& o) -> std::string& { return o.webAddress; }), 0, maxTextLength},
    Option{"site", "FOLDER", "serve this folder's files to browsers (none)",
           Text([](Options& o) -> std::string& { return o.site; }), 0, maxPathLength},
    Option{"allow-origin", "ORIGINS", "web pages that may play here, between commas, * for all (*)",
           Text([](Options& o) -> std::string& { return o.allowOrigin; }), 0, maxPathLength},
    Option{"trusted-proxy", "ADDRESS", "believe this proxy's X-Forwarded-For (none)",
           Text([](Options& o) -> std::string& { return o.trustedProxy; }), 0, maxTextLength},
    Option{"public-address", "ADDRESS", "what the list gives as the address of this server (as --address)",
           Text([](Options& o) -> std::string& { return o.publicAddress; }), 0, maxTextLength},
    Option{"notes", "TEXT", "what the list says about this server (nothing)",
           Letters{[](Options& o) -> std::string& { return o.notes; }, false}, 0, int{maxNotesLength}},

    Option{"list-key", "KEY", "what other servers must give to be in the list served here (none)",
           Text([](Options& o) -> std::string& { return o.listKey; }), 0, maxTextLength},
    Option{"publish", "URL", "the host of a list where this server announces itself, http://HOST:PORT (none)",
           Text([](Options& o) -> std::string& { return o.publishUrl; }), 0, maxTextLength},
    Option{"publish-key", "KEY", "the key of that list (none)",
           Text([](Options& o) -> std::string& { return o.publishKey; }), 0, maxTextLength},

    heading("Besides:"),
    Option{"config", "FILE", "read options from lines \"name = value\"; the command line wins (none)",
           Text([](Options& o) -> std::string& { return o.config; }), 1, maxPathLength},
    Option{"help", "", "this text", Switch([](Options& o) { o.help = true; })},
    Option{"version", "", "the version, which is also the one that clients must have",
           Switch([](Options& o) { o.version = true; })},
};

std::string range(const Option& option) {
  return " from " + std::to_string(option.lowest) + " to " + std::to_string(option.highest);
}

/// Sets an option according to its kind, or refuses the value with a reason.
struct Set {
  Options& options;
  const Option& option;
  const std::string& value;

  Outcome operator()(Switch set) const {
    if (!value.empty()) return Outcome::refused("must stand alone");
    set(options);
    return Outcome::done();
  }
  Outcome operator()(Text target) const {
    if (value.size() > static_cast<std::size_t>(option.highest)) {
      return Outcome::refused("must not be longer than " + std::to_string(option.highest) + " bytes");
    }
    if (value.size() < static_cast<std::size_t>(option.lowest)) return Outcome::refused("must not be empty");
    target(options) = value;
    return Outcome::done();
  }
  Outcome operator()(const Letters& letters) const {
    const auto bytes = codePageFromUtf8(value);
    if (!bytes) return Outcome::refused("must be UTF-8 text in letters that the game has, those of code page 1252");
    if (letters.inLogins &&
        bytes->find_first_of({wire::frameStart, wire::frameEnd, wire::fieldSeparator}) != bytes->npos)
      return Outcome::refused("must not contain a euro sign or a low quotation mark, which no player can send");
    return Set{options, option, *bytes}(letters.target);
  }
  Outcome operator()(Whole set) const {
    const auto number = wholeNumber<int>(value);
    if (!number || *number < option.lowest || *number > option.highest)
      return Outcome::refused("must be a whole number" + range(option));
    set(options, *number);
    return Outcome::done();
  }
  Outcome operator()(Decimal set) const {
    const auto number = wholeNumber<double>(value);
    // NaN fails every comparison.
    if (!number || !(*number >= option.lowest && *number <= option.highest))
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
