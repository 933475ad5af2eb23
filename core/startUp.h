#pragma once

namespace kelvora::modMain {

/// Starts the client and runs its main loop; does not return. Needs an installed backend.
void startGame();

}  // namespace kelvora::modMain
