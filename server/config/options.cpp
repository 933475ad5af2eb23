#include "server/config/options.h"

#include <algorithm>
#include <string_view>

#include "server/config/configFile.h"
#include "server/config/optionTable.h"

namespace kelvora::server {

namespace {

const Option* find(std::string_view name) {
  const auto table = optionTable();
  const auto found = std::ranges::find(table, name, &Option::name);
  return found == table.end() || name.empty() ? nullptr : &*found;
}

/// Takes one setting of the file; the answer is what is wrong with it.
std::string takeLine(Options& options, std::string_view name, const std::string& value) {
  const Option* option = find(name);
  if (option == nullptr) return "unknown option \"" + std::string(name) + "\"";
  if (name == "config" || std::holds_alternative<Option::Switch>(option->target)) {
    return std::string(name) + " is for the command line alone";
  }
  const std::string complaint = setOption(options, *option, value);
  return complaint.empty() ? complaint : std::string(name) + " " + complaint;
}

void takeArguments(Options& options, std::span<const char* const> arguments) {
  for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
    const std::string_view argument = arguments[i];
    const std::size_t equals = std::min(argument.find('='), argument.size());
    const std::string name(argument.substr(0, equals));
    const Option* option = name.starts_with("--") ? find(std::string_view(name).substr(2)) : nullptr;
    if (option == nullptr) {
      options.error = "unknown option " + name;
      return;
    }
    std::string value;
    if (equals < argument.size()) {
      value = argument.substr(equals + 1);
    } else if (!std::holds_alternative<Option::Switch>(option->target)) {
      if (++i == arguments.size()) {
        options.error = name + " needs a value";
        return;
      }
      value = arguments[i];
    }
    const std::string complaint = setOption(options, *option, value);
    if (!complaint.empty()) options.error.append(name).append(" ").append(complaint);
  }
}

Options parse(std::span<const char* const> arguments) {
  Options options;
  takeArguments(options, arguments);
  if (!options.error.empty() || options.config.empty()) return options;
  Options withFile;
  withFile.error = readConfigFile(
      options.config, [&](std::string_view name, const std::string& value) { return takeLine(withFile, name, value); });
  takeArguments(withFile, arguments);
  return withFile;
}

}  // namespace

Options parseOptions(std::span<const char* const> arguments) {
  Options options = parse(arguments);
  const std::string& url = options.publishUrl;
  if (options.error.empty() && !url.empty() && !url.starts_with("http://") && !url.starts_with("https://")) {
    options.error = "the address to publish at must begin with http:// or https://";
  }
  return options;
}

std::string helpText() {
  std::string text =
      "Usage: kelvora-server [options]\n"
      "Runs an arena for up to six players until it gets SIGINT, SIGTERM or SIGHUP.\n";
  std::size_t width = 0;
  for (const Option& option : optionTable()) width = std::max(width, option.name.size() + option.valueName.size() + 3);
  for (const Option& option : optionTable()) {
    if (option.name.empty()) {
      text += "\n" + std::string(option.help) + "\n";
      continue;
    }
    std::string left = "--" + std::string(option.name) + " " + std::string(option.valueName);
    left.resize(width, ' ');
    text += "  " + left + "  " + std::string(option.help) + "\n";
  }
  return text;
}

std::string versionText() { return KELVORA_SERVER_VERSION; }

}  // namespace kelvora::server
