#include "server/config/options.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string_view>
#include <vector>

#include "generated/version.h"
#include "server/config/optionTable.h"
#include "server/records/database.h"
#include "server/replays/compression.h"

namespace kelvora::server {
namespace {

struct Parsed : Options {
  std::string error;  // empty for none
};

Parsed parse(std::vector<std::string> arguments) {
  Parsed parsed;
  const Outcome outcome = parseOptions(arguments, parsed);
  EXPECT_EQ(outcome.isRefused(), !outcome.reason().empty());
  parsed.error = outcome.reason();
  return parsed;
}

TEST(ServerOptions, HaveDefaults) {
  const Parsed options = parse({});
  EXPECT_EQ(options.error, "");
  EXPECT_EQ(options.address, "127.0.0.1");
  EXPECT_EQ(options.port, 2010);
  EXPECT_EQ(options.password, "");
  EXPECT_EQ(options.rules.incomePerMinute, 5);
  EXPECT_FALSE(options.webPort.has_value());
  EXPECT_EQ(options.webAddress, "");
  EXPECT_EQ(options.publicAddress, "");
  EXPECT_EQ(options.notes, "");
  EXPECT_FALSE(options.help);
  EXPECT_FALSE(options.version);
}

TEST(ServerOptions, EachListMustBeAWebServer) {
  EXPECT_EQ(parse({"--publish", "http://a:8080, https://b"}).error, "");
  for (const char* urls : {"a:8080", "http://a, b", "http://a,,http://b"}) {
    EXPECT_EQ(parse({"--publish", urls}).error, "--publish needs URLs that begin with http:// or https://") << urls;
  }
}

TEST(ServerOptions, AddressesMustBeIpAddresses) {
  for (const char* proxy : {"", "192.0.2.7", "2001:db8::7"}) {
    EXPECT_EQ(parse({"--trusted-proxy", proxy}).error, "") << proxy;
  }
  for (const char* proxy : {"games.example", "192.0.2.0/24", "192.0.2.7, 192.0.2.8", "*"}) {
    EXPECT_EQ(parse({"--trusted-proxy", proxy}).error, "--trusted-proxy must be an IP address") << proxy;
  }
  for (const std::string option : {"--metrics-for", "--unlimited-for"}) {
    for (const char* addresses : {"", "*", "192.0.2.7, 10.0.0.0/8, 2001:db8::/32"}) {
      EXPECT_EQ(parse({option, addresses}).error, "") << addresses;
    }
    for (const char* addresses : {"games.example", "10.0.0.0/33", "192.0.2.7 192.0.2.8"}) {
      EXPECT_EQ(parse({option, addresses}).error,
                option + " needs IP addresses and networks, such as 192.0.2.7 and 10.0.0.0/8, or *")
          << addresses;
    }
  }
}

TEST(ServerOptions, PublicAddressesAreThoseThatListsAccept) {
  for (const char* address : {"", "games.example", "2001:db8::7", "my-server"}) {
    EXPECT_EQ(parse({"--public-address", address}).error, "") << address;
  }
  for (const char* address : {"a[b]", "games example", "a|b", "http://games.example/"}) {
    EXPECT_EQ(parse({"--public-address", address}).error,
              "--public-address must have letters, digits, points, colons and hyphens only")
        << address;
  }
}

TEST(ServerOptions, OriginsHaveASchemeOrAreAnyPage) {
  for (const char* origins : {"", "*", "https://games.example", "http://a:8080, https://b/"}) {
    EXPECT_EQ(parse({"--allow-origin", origins}).error, "") << origins;
  }
  for (const char* origins : {"games.example", "http://a, b", "http://a,,http://b", "http:a", "ftp://a"}) {
    EXPECT_EQ(parse({"--allow-origin", origins}).error,
              "--allow-origin needs origins such as https://games.example, or *")
        << origins;
  }
}

TEST(ServerOptions, HelpHasAShortName) {
  EXPECT_TRUE(parse({"-h"}).help);
  EXPECT_EQ(parse({"-x"}).error, "unknown option -x");
}

TEST(ServerOptions, AgonesPortMustBeAPort) {
  Options options;
  EXPECT_FALSE(takeAgonesPort("9358", options).isRefused());
  EXPECT_EQ(options.agonesPort, 9358);
  for (const char* port : {"", "0", "65536", "-1", "http", "9358 "}) {
    EXPECT_TRUE(takeAgonesPort(port, options).isRefused()) << port;
  }
}

TEST(ServerOptions, TextsAreStoredInTheGamesCodePage) {
  const Parsed options = parse({"--password", "\u00D6ffne dich", "--notes", "f\u00FCr alle, 5 \u20AC"});
  EXPECT_EQ(options.error, "");
  EXPECT_EQ(options.password,
            "\xD6"
            "ffne dich");
  EXPECT_EQ(options.notes, "f\xFCr alle, 5 \x80");
  EXPECT_EQ(parse({"--notes", "\u043C\u0438\u0440"}).error,
            "--notes must be UTF-8 text with letters of code page 1252 only");
  EXPECT_EQ(parse({"--password", "\xD6"}).error, "--password must be UTF-8 text with letters of code page 1252 only");
}

TEST(ServerOptions, APasswordThatNoLoginCanCarryIsRefused) {
  for (const char* password : {"5 \u20AC", "\u201Aso\u2018", "\u0081"}) {
    EXPECT_EQ(parse({"--password", password}).error,
              "--password must not contain a euro sign or a low quotation mark, which no player can send");
  }
  EXPECT_EQ(parse({"--password", "\u201Eso\u201C"}).error, "") << "double quotation marks are ordinary characters";
}

TEST(ServerOptions, AreReadInBothSpellings) {
  for (const auto& options : {parse({"--address", "::1", "--port", "0", "--password", "a b"}),
                              parse({"--address=::1", "--port=0", "--password=a b"})}) {
    EXPECT_EQ(options.error, "");
    EXPECT_EQ(options.address, "::1");
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.password, "a b");
  }
  EXPECT_TRUE(parse({"--help"}).help);
  EXPECT_TRUE(parse({"--version"}).version);
  EXPECT_EQ(parse({"--password=a=b"}).password, "a=b");
}

TEST(ServerOptions, ReachTheWebServerAndTheIncome) {
  const Parsed options = parse({"--web-port", "8080", "--web-address=0.0.0.0", "--public-address", "play.example",
                                "--notes", "a = b", "--income=0"});
  EXPECT_EQ(options.error, "");
  EXPECT_EQ(options.webPort, 8080);
  EXPECT_EQ(options.webAddress, "0.0.0.0");
  EXPECT_EQ(options.publicAddress, "play.example");
  EXPECT_EQ(options.notes, "a = b");
  EXPECT_EQ(options.rules.incomePerMinute, 0);
  EXPECT_EQ(options.port, 2010);
  EXPECT_EQ(parse({"--income", "6000"}).error, "");
}

TEST(ServerOptions, SpectatorsHaveTheNextPort) {
  EXPECT_EQ(parse({}).rules.spectators, 0);
  EXPECT_EQ(parse({"--spectators", "32"}).rules.spectators, 32);
  EXPECT_EQ(parse({"--spectators", "32"}).portOfSpectators(), 2011);
  EXPECT_EQ(parse({"--spectators", "32", "--port", "0"}).portOfSpectators(), 0);
  EXPECT_EQ(parse({"--spectators", "32", "--spectator-port", "99"}).portOfSpectators(), 99);
  EXPECT_NE(parse({"--spectators", "65"}).error, "");
  EXPECT_EQ(parse({"--spectator-port", "99"}).error, "a port for spectators needs --spectators");
  EXPECT_EQ(parse({"--spectators", "1", "--port", "65535"}).error,
            "there is no port after the game's, so spectators need --spectator-port");
  EXPECT_EQ(parse({"--spectators", "1", "--port", "65535", "--spectator-port", "0"}).error, "");
}

TEST(ServerOptions, RoundsAndRecordsNeedTheirLibraries) {
  const std::string noRounds = "this system's server has no zlib, so it can't record or replay rounds";
  EXPECT_EQ(parse({"--record", "rounds"}).error, canCompress() ? "" : noRounds);
  EXPECT_EQ(parse({"--replay", "a.round"}).error, canCompress() ? "" : noRounds);
  EXPECT_EQ(parse({"--records", "records"}).error,
            Database::isSupported() ? "" : "this system's server has no SQLite, so it can't keep records");
}

TEST(ServerOptions, RoundsAreRecordedOrShown) {
  if (!canCompress()) return;  // the server for Windows refuses them
  const Parsed options = parse({"--record", "rounds", "--record-count", "5", "--record-size", "7"});
  EXPECT_EQ(options.error, "");
  EXPECT_EQ(options.replays.folder, "rounds");
  EXPECT_EQ(options.replays.maxCount, 5);
  EXPECT_EQ(options.replays.maxMebibytes, 7);
  EXPECT_NE(parse({"--record-count", "0"}).error, "");
  EXPECT_NE(parse({"--record-size", "0"}).error, "");
  EXPECT_EQ(parse({"--replay", "a.round"}).replayFile, "a.round");
  EXPECT_EQ(parse({"--replay", "a.round", "--record", "rounds"}).error, "a replay can't be recorded again");
  EXPECT_EQ(parse({"--replay", "a.round", "--publish", "http://h"}).error, "a replay isn't a game that lists can have");
}

TEST(ServerOptions, LimitsOfRecordedRoundsNeedAFolder) {
  const std::string refusal = "limits of recorded rounds need --record";
  EXPECT_EQ(parse({"--record-size", "7"}).error, refusal);
  EXPECT_EQ(parse({"--record-count", "7"}).error, refusal);
  EXPECT_EQ(parse({"--record-count", "100"}).error, refusal) << "the default";
  EXPECT_EQ(parse({"--record-size", "100"}).error, refusal) << "the default";
  EXPECT_EQ(parse({"--record-size", "7", "--replay", "a.round"}).error, refusal);
}

TEST(ServerOptions, ThatAreInvalidAreReported) {
  EXPECT_NE(parse({"--prot", "1"}).error, "");
  EXPECT_NE(parse({"2010"}).error, "");
  EXPECT_NE(parse({"--port"}).error, "");
  for (const char* option :
       {"--web-port", "--web-address", "--public-address", "--notes", "--income", "--round-seconds",
        "--captures-to-win", "--intermission", "--respawn-wait", "--speed-limit"}) {
    EXPECT_NE(parse({option}).error.find(option), std::string::npos) << option;
  }
  for (const char* income : {"", "x", "5x", "-1", "6001", "5.5"}) {
    EXPECT_NE(parse({"--income", income}).error, "") << income;
  }
  for (const char* port : {"", "x", "-1", "65536"}) EXPECT_NE(parse({"--web-port", port}).error, "") << port;
  for (const char* port : {"", "x", "12x", "-1", "65536"}) EXPECT_NE(parse({"--port", port}).error, "") << port;
}

TEST(ServerOptions, SetTheRules) {
  const ArenaRules usual = parse({}).rules;
  EXPECT_EQ(usual.roundMs, 180'000);
  EXPECT_EQ(usual.captureGoal, 10);
  EXPECT_EQ(usual.intermissionMs, 12'000);
  EXPECT_EQ(usual.respawnWaitMs, 3'000);
  EXPECT_EQ(usual.speedFactor, 3);
  const Parsed options = parse({"--round-seconds", "60", "--captures-to-win=0", "--intermission", "5",
                                "--respawn-wait=0", "--speed-limit", "10"});
  EXPECT_EQ(options.error, "");
  EXPECT_EQ(options.rules.roundMs, 60'000);
  EXPECT_EQ(options.rules.captureGoal, 0);
  EXPECT_EQ(options.rules.intermissionMs, 5'000);
  EXPECT_EQ(options.rules.respawnWaitMs, 0);
  EXPECT_EQ(options.rules.speedFactor, 10);
  for (const char* option : {"--round-seconds", "--captures-to-win", "--intermission", "--respawn-wait"}) {
    for (const char* value : {"", "x", "-1", "1.5", "86401"}) EXPECT_NE(parse({option, value}).error, "") << option;
  }
  EXPECT_EQ(parse({"--speed-limit", "1.5"}).rules.speedFactor, 1.5);
  for (const char* value : {"", "x", "-0.5", "1000.5", "nan", "inf", "1,5"}) {
    EXPECT_NE(parse({"--speed-limit", value}).error, "") << value;
  }
  EXPECT_NE(parse({"--round-seconds", "0"}).error, "") << "a round can't take no time";
}

TEST(ServerOptions, ConfigureTheBots) {
  EXPECT_EQ(parse({}).bots.count, 0);
  EXPECT_EQ(parse({}).bots.skill, SkillLevel::mixed);
  EXPECT_EQ(parse({"--bots", "5"}).bots.count, 5);
  for (const char* count : {"", "x", "-1", "6"}) EXPECT_NE(parse({"--bots", count}).error, "") << count;
  EXPECT_EQ(parse({"--skill", "easy"}).bots.skill, SkillLevel::easy);
  EXPECT_EQ(parse({"--skill", "normal"}).bots.skill, SkillLevel::normal);
  EXPECT_EQ(parse({"--skill", "hard"}).bots.skill, SkillLevel::hard);
  EXPECT_EQ(parse({"--skill", "mixed"}).bots.skill, SkillLevel::mixed);
  for (const char* skill : {"", "Easy", "harder", "easy|normal"})
    EXPECT_NE(parse({"--skill", skill}).error, "") << skill;
}

TEST(ServerOptions, TheVersionIsThatOfTheGame) { EXPECT_EQ(versionText(), KELVORA_VERSION); }

TEST(ServerOptions, TheHelpNamesEachOption) {
  for (const char* option : {"--address", "--port", "--password", "--income", "--round-seconds", "--captures-to-win",
                             "--intermission", "--respawn-wait", "--speed-limit", "--bots", "--skill", "--web-port",
                             "--web-address", "--public-address", "--notes", "--config", "--help", "--version"}) {
    EXPECT_NE(helpText().find(option), std::string::npos) << option;
  }
}

TEST(ServerOptions, TheHelpHasTheRangesOfNumbers) {
  const std::string help = helpText();
  EXPECT_NE(help.find(" length of a round (180; 1 to 86400)\n"), help.npos) << help;
  EXPECT_NE(help.find("number of bots while people play (0; 0 to 5)\n"), help.npos);
  EXPECT_NE(help.find("0 for no limit (3; 0 to 1000)\n"), help.npos);
  EXPECT_NE(help.find("second port with the same services (none; 0 to 65535)\n"), help.npos);
  for (const Option& option : optionTable()) {
    if (option.valueName.empty()) continue;
    EXPECT_TRUE(option.help.ends_with(')')) << option.name << " lacks its default";
  }
}

TEST(ServerOptions, HelpFitsATerminalOf120Columns) {
  std::istringstream lines(helpText());
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 120U) << line;
}

TEST(ServerOptions, NoNameAppearsTwiceInTheTable) {
  std::set<std::string_view> names;
  for (const Option& option : optionTable()) {
    EXPECT_TRUE(option.name.empty() || names.insert(option.name).second) << option.name;
  }
}

TEST(ServerOptions, TextsHaveAMaximumLength) {
  const std::string longest(200, 'n');
  EXPECT_EQ(parse({"--notes", longest.c_str()}).notes, longest);
  EXPECT_EQ(parse({"--notes", (longest + "n").c_str()}).error, "--notes must not be longer than 200 bytes");
  EXPECT_EQ(parse({"--config", ""}).error, "--config must not be empty");
}

TEST(ServerOptions, SwitchesTakeNoValue) {
  EXPECT_EQ(parse({"--help=yes"}).error, "--help takes no value");
  EXPECT_EQ(parse({"--help", "--port", "1"}).port, 1);
}

TEST(ServerOptions, WordMustBeOneOfItsRow) {
  Options options;
  const Option row{"colour", "red|green|blue", "",
                   Option::Word{[](Options& o, int index) { o.port = static_cast<std::uint16_t>(index); }}};
  EXPECT_EQ(setOption(options, row, "green").reason(), "");
  EXPECT_EQ(options.port, 1);
  EXPECT_EQ(setOption(options, row, "blue").reason(), "");
  EXPECT_EQ(options.port, 2);
  for (const char* value : {"", "gree", "greens", "red|green", "|"}) {
    EXPECT_EQ(setOption(options, row, value).reason(), "must be one of red|green|blue") << value;
  }
  EXPECT_EQ(options.port, 2);
}

TEST(ServerOptions, HeadingsAreNotOptions) {
  EXPECT_EQ(parse({"--", "x"}).error, "unknown option --");
  EXPECT_EQ(parse({"--=x"}).error, "unknown option --");
}

}  // namespace
}  // namespace kelvora::server
