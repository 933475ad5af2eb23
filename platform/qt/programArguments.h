#pragma once

namespace kelvora {

/// Answers a command line of "--version" or "--help" alone on standard output: the version and where the program finds
/// its files, or how it is started. False for any other command line, which is the game's.
bool answersArguments(int argc, char** argv);

}  // namespace kelvora
