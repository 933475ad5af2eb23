#pragma once

namespace kelvora {

/// Sets up the desktop, installs it as the backend and runs the game, which normally ends the process. An uncaught
/// fault shows an error box and ends it with status 1. A command line that only requests the version or help is
/// answered instead. Returns the exit status, 0.
int runDesktop(int argc, char** argv, void (*game)());

}  // namespace kelvora
