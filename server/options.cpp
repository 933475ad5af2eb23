#include "server/options.h"

#include <string_view>

#include "server/wholeNumber.h"

namespace kelvora::server {

namespace {

constexpr int highestIncome = 6'000;

/// Takes the value of an option; what is wrong with it goes into `error`.
void take(Options& options, std::string_view name, const std::string& value) {
  if (name == "--address") {
    options.address = value;
  } else if (name == "--password") {
    options.password = value;
  } else if (name == "--web-address") {
    options.webAddress = value;
  } else if (name == "--public-address") {
    options.publicAddress = value;
  } else if (name == "--notes") {
    options.notes = value;
  } else if (name == "--income") {
    options.income = wholeNumber<int>(value).value_or(-1);
    if (options.income < 0 || options.income > highestIncome) {
      options.error = "the income must be a number from 0 to " + std::to_string(highestIncome);
    }
  } else if (name == "--port" || name == "--web-port") {
    const auto port = wholeNumber<std::uint16_t>(value);
    if (!port) options.error = "the port must be a number from 0 to 65535";
    if (name == "--port") {
      options.port = port.value_or(0);
    } else {
      options.webPort = port;
    }
  } else {
    options.error = "unknown option " + std::string(name);
  }
}

}  // namespace

Options parseOptions(std::span<const char* const> arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
    const std::string_view argument = arguments[i];
    const std::size_t equals = argument.find('=');
    if (argument == "--help") {
      options.help = true;
    } else if (argument == "--version") {
      options.version = true;
    } else if (equals != std::string_view::npos) {
      take(options, argument.substr(0, equals), std::string(argument.substr(equals + 1)));
    } else if (i + 1 < arguments.size()) {
      take(options, argument, arguments[++i]);
    } else {
      take(options, argument, "");
      if (!options.error.starts_with("unknown")) options.error = std::string(argument) + " needs a value";
    }
  }
  return options;
}

std::string helpText() {
  return "Usage: kelvora-server [options]\n"
         "Runs an arena for up to six players until it gets SIGINT or SIGTERM.\n"
         "\n"
         "  --address ADDRESS         where to listen (127.0.0.1)\n"
         "  --port PORT               TCP port, 0 for any free one (2010)\n"
         "  --password PASSWORD       what players must give to get in (none)\n"
         "  --income CREDITS          what a living player earns a minute (5)\n"
         "  --web-port PORT           serve the list of games and the update file by HTTP on this port (not at all)\n"
         "  --web-address ADDRESS     where to listen for that (as --address)\n"
         "  --public-address ADDRESS  what the list gives as the address of this server (as --address)\n"
         "  --notes TEXT              what the list says about this server (nothing)\n"
         "  --help                    this text\n"
         "  --version                 the version, which is also the one that clients must have\n";
}

std::string versionText() { return KELVORA_SERVER_VERSION; }

}  // namespace kelvora::server
