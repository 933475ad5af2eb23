#include "server/config/options.h"

#include <algorithm>
#include <string_view>

#include "base/numberFromText.h"
#include "server/config/configFile.h"
#include "server/config/optionTable.h"
#include "server/records/database.h"
#include "server/replays/compression.h"

namespace kelvora::server {

namespace {

const Option* find(std::string_view name) {
  const auto table = optionTable();
  const auto found = std::ranges::find(table, name, &Option::name);
  return found == table.end() || name.empty() ? nullptr : &*found;
}

/// Applies one setting of the file.
Outcome takeLine(Options& options, std::string_view name, const std::string& value) {
  const Option* option = find(name);
  if (option == nullptr) return Outcome::refused("unknown option \"" + std::string(name) + "\"");
  if (name == "config" || std::holds_alternative<Option::Switch>(option->target)) {
    return Outcome::refused(std::string(name) + " is for the command line only");
  }
  const Outcome outcome = setOption(options, *option, value);
  return outcome.isRefused() ? Outcome::refused(std::string(name) + " " + outcome.reason()) : outcome;
}

Outcome takeArguments(Options& options, std::span<const std::string> arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    const std::size_t equals = std::min(argument.find('='), argument.size());
    const std::string name(argument == "-h" ? "--help" : argument.substr(0, equals));
    const Option* option = name.starts_with("--") ? find(std::string_view(name).substr(2)) : nullptr;
    if (option == nullptr) return Outcome::refused("unknown option " + name);
    std::string value;
    if (equals < argument.size()) {
      value = argument.substr(equals + 1);
    } else if (!std::holds_alternative<Option::Switch>(option->target)) {
      if (++i == arguments.size()) return Outcome::refused(name + " needs a value");
      value = arguments[i];
    }
    const Outcome outcome = setOption(options, *option, value);
    if (outcome.isRefused()) return Outcome::refused(name + " " + outcome.reason());
  }
  return Outcome::done();
}

}  // namespace

Outcome parseOptions(std::span<const std::string> arguments, Options& options) {
  options = {};
  if (Outcome outcome = takeArguments(options, arguments); outcome.isRefused()) return outcome;
  if (!options.config.empty()) {
    const std::string fileName = options.config;
    options = {};
    Outcome outcome = readConfigFile(
        fileName, [&](std::string_view name, const std::string& value) { return takeLine(options, name, value); });
    if (!outcome.isRefused()) outcome = takeArguments(options, arguments);
    if (outcome.isRefused()) return outcome;
  }
  if (options.spectatorPort && options.rules.spectators == 0) {
    return Outcome::refused("a port for spectators needs --spectators");
  }
  if (options.rules.spectators > 0 && !options.spectatorPort && options.port == 65'535) {
    return Outcome::refused("there is no port after the game's, so spectators need --spectator-port");
  }
  const bool records = !options.replays.folder.empty();
  if (!records && options.limitsReplays) {
    return Outcome::refused("limits of recorded rounds need --record");
  }
  if ((records || !options.replayFile.empty()) && !canCompress()) {
    return Outcome::refused("this system's server has no zlib, so it can't record or replay rounds");
  }
  if (records && !options.replayFile.empty()) return Outcome::refused("a replay can't be recorded again");
  if (!options.replayFile.empty() && !options.publishUrls.empty()) {
    return Outcome::refused("a replay isn't a game that lists can have");
  }
  if (!options.recordsFile.empty() && !Database::isSupported()) {
    return Outcome::refused("this system's server has no SQLite, so it can't keep records");
  }
  return Outcome::done();
}

Outcome takeAgonesPort(const std::string& value, Options& options) {
  options.agonesPort = numberFromText<std::uint16_t>(value);
  if (!options.agonesPort || *options.agonesPort == 0) return Outcome::refused("must be a port, not \"" + value + "\"");
  return Outcome::done();
}

namespace {

/// The option's help, with the range of a number beside its default.
std::string helpOf(const Option& option) {
  std::string help(option.help);
  if (!std::holds_alternative<Option::Whole>(option.target) &&
      !std::holds_alternative<Option::Decimal>(option.target)) {
    return help;
  }
  return help.substr(0, help.size() - 1) + "; " + std::to_string(option.min) + " to " + std::to_string(option.max) +
         ")";
}

}  // namespace

std::string helpText() {
  std::string text =
      "Usage: kelvora-server [options]\n"
      "Runs an arena for up to six players until it is told to stop.\n";
  std::size_t width = 0;
  for (const Option& option : optionTable()) width = std::max(width, option.name.size() + option.valueName.size() + 3);
  for (const Option& option : optionTable()) {
    if (option.name.empty()) {
      text += "\n" + std::string(option.help) + "\n";
      continue;
    }
    std::string left = "--" + std::string(option.name) + " " + std::string(option.valueName);
    left.resize(width, ' ');
    text += "  " + left + "  " + helpOf(option) + "\n";
  }
  return text;
}

std::string versionText() { return KELVORA_SERVER_VERSION; }

}  // namespace kelvora::server
