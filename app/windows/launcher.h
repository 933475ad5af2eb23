#pragma once

namespace kelvora {

/// Starts the game at its design speed with this program's arguments, and waits. Returns its exit code. If it can't
/// start, shows a box and returns 1.
int playOnline();
/// Also starts a local server with bots, and stops it with the game or this program.
int playAgainstBots();

}  // namespace kelvora
