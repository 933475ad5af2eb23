#pragma once

namespace kelvora {

/// Sets up the desktop, installs it as the backend and runs the game, which normally doesn't return. Returns the
/// status, 0. An uncaught fault shows an error box and ends the process with status 1. A command line that only
/// requests the version or help is answered instead.
int runDesktop(int argc, char** argv, void (*game)());

}  // namespace kelvora
