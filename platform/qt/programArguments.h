#pragma once

namespace kelvora {

/// Handles a command line that consists of "--version" or "--help": prints the version and the data folders, or how to
/// start the program. False for any other command line, which is left to the game.
bool handleInfoOptions(int argc, char** argv);

}  // namespace kelvora
