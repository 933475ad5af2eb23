#pragma once

namespace kelvora {

/// Starts the game at its design speed and waits for its end. The game gets this program's arguments. Returns its exit
/// code, or 1 if it can't be started, which a box tells.
int playOnline();
/// The same, with a server with bots on this machine, which ends with the game, or with this program.
int playAgainstBots();

}  // namespace kelvora
