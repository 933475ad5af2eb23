#pragma once

namespace kelvora {

/// Sets up the desktop, installs it as the backend and runs the game, which is not expected to return; if it does, the
/// status is 0. A fault that reaches this level shows an error box and ends the process with status 1. A
/// command line that only asks for the version or for help is answered instead.
int runDesktop(int argc, char** argv, void (*game)());

}  // namespace kelvora
