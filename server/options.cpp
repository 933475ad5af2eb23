#include "server/options.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace kelvora::server {

namespace {

std::optional<std::uint16_t> portNumber(std::string_view text) {
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return port;
}

}  // namespace

Options parseOptions(std::span<const char* const> arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
    const std::string_view argument = arguments[i];
    const std::size_t equals = argument.find('=');
    const std::string name(argument.substr(0, equals));
    if (argument == "--help") {
      options.help = true;
    } else if (argument == "--version") {
      options.version = true;
    } else if (name != "--address" && name != "--port" && name != "--password") {
      options.error = "unknown option " + std::string(argument);
    } else if (equals == std::string_view::npos && i + 1 == arguments.size()) {
      options.error = name + " needs a value";
    } else {
      const std::string value(equals == std::string_view::npos ? std::string_view(arguments[++i])
                                                               : argument.substr(equals + 1));
      if (name == "--address") {
        options.address = value;
      } else if (name == "--password") {
        options.password = value;
      } else if (const auto port = portNumber(value)) {
        options.port = *port;
      } else {
        options.error = "the port must be a number from 0 to 65535";
      }
    }
  }
  return options;
}

std::string helpText() {
  return "Usage: kelvora-server [options]\n"
         "Runs an arena for up to six players until it gets SIGINT or SIGTERM.\n"
         "\n"
         "  --address ADDRESS    where to listen (127.0.0.1)\n"
         "  --port PORT          TCP port, 0 for any free one (2010)\n"
         "  --password PASSWORD  what players must give to get in (none)\n"
         "  --help               this text\n"
         "  --version            the version, which is also the one that clients must have\n";
}

std::string versionText() { return KELVORA_SERVER_VERSION; }

}  // namespace kelvora::server
