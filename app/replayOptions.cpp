#include "app/replayOptions.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "app/clockText.h"

namespace kelvora {

namespace {

using Action = ReplayOptions::Action;

struct Option {
  std::string_view name;
  std::string_view value;  ///< empty if it takes none
  std::string_view help;
  Outcome (*take)(ReplayOptions& options, const std::string& value);
};

template <Action action>
Outcome choose(ReplayOptions& options, const std::string& target) {
  constexpr bool isQuestion = action == Action::Help || action == Action::Version;
  if (!isQuestion && options.action != Action::Show && options.action != action) {
    return Outcome::refused("only one of --verify, --frames and --video can be done at a time");
  }
  options.action = action;
  options.target = target;
  return Outcome::done();
}

template <Millis FilmRange::*end>
Outcome takeTime(ReplayOptions& options, const std::string& value) {
  const auto time = timeFromText(value);
  if (!time) return Outcome::refused("\"" + value + "\" is no time such as 1:30");
  options.range.*end = *time;
  options.hasRange = true;
  return Outcome::done();
}

constexpr std::array table = {
    Option{"--verify", "", "compare every picture and state that the recording sums up", choose<Action::Verify>},
    Option{"--frames", "FOLDER", "write the canvas as PNG files, 25 for each second", choose<Action::Frames>},
    Option{"--video", "VIDEO", "make a film of them, with sound; needs ffmpeg", choose<Action::Video>},
    Option{"--from", "TIME", "where pictures or film begin, such as 1:30", takeTime<&FilmRange::from>},
    Option{"--to", "TIME", "where they end", takeTime<&FilmRange::to>},
    Option{"--version", "", "print the version", choose<Action::Version>},
    Option{"--help", "", "print this help", choose<Action::Help>},
};

Outcome check(const ReplayOptions& options) {
  if (options.file.empty()) return Outcome::refused("name the recording to play");
  if (options.hasRange && options.action != Action::Frames && options.action != Action::Video) {
    return Outcome::refused("--from and --to need --frames or --video");
  }
  if (options.range.from >= options.range.to) return Outcome::refused("--to must be later than --from");
  return Outcome::done();
}

}  // namespace

Outcome parseReplayOptions(std::span<const std::string> arguments, ReplayOptions& options) {
  options = {};
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (!argument.starts_with("-")) {
      if (!options.file.empty()) return Outcome::refused("only one recording can be played at a time");
      options.file = argument;
      continue;
    }
    const auto option =
        std::find_if(table.begin(), table.end(), [&](const Option& row) { return row.name == argument; });
    if (option == table.end()) return Outcome::refused("unknown option " + argument);
    std::string value;
    if (!option->value.empty()) {
      if (++i == arguments.size()) return Outcome::refused(argument + " needs a " + std::string(option->value));
      value = arguments[i];
    }
    if (Outcome outcome = option->take(options, value); outcome.isRefused()) return outcome;
    if (options.action == Action::Help || options.action == Action::Version) return Outcome::done();
  }
  return check(options);
}

std::string replayHelp() {
  std::string text =
      "Usage: kelvora-replay [options] FILE\n"
      "Plays a recorded game again, in windows; press ? there for the keys. KELVORA_RECORD=FILE records one.\n"
      "\n";
  constexpr std::size_t width = 18;
  for (const Option& option : table) {
    std::string left = std::string(option.name) + " " + std::string(option.value);
    left.resize(width, ' ');
    text += "  " + left + std::string(option.help) + "\n";
  }
  return text +
         "\n"
         "Exit status: 2 if the options are wrong, the recording can't be read, or a film can't be made.\n"
         "With --verify, --frames or --video, 1 if the replay is not exact or the recorded game failed,\n"
         "130 if it was interrupted. Without them, 1 if there is no screen. 0 otherwise.\n";
}

}  // namespace kelvora
