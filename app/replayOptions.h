#pragma once

#include <span>
#include <string>

#include "app/film.h"
#include "base/outcome.h"

namespace kelvora {

/// The task of kelvora-replay.
struct ReplayOptions {
  enum class Action { Show, Verify, Frames, Video, Help, Version };

  Action action = Action::Show;
  std::string file;
  std::string target;     ///< the folder of Frames, or the file of Video
  FilmRange range;        ///< of these two
  bool hasRange = false;  ///< whether an end of it was given
};

/// Reads the arguments, without the program's name, into new options. Their order doesn't matter.
Outcome parseReplayOptions(std::span<const std::string> arguments, ReplayOptions& options);

/// The text of --help.
std::string replayHelp();

}  // namespace kelvora
