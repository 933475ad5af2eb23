#pragma once

namespace kelvora::modMain {

/// Starts the client and runs its main loop. Never returns. A backend must be installed.
void startGame();

}  // namespace kelvora::modMain
