#pragma once

namespace kelvora::modMain {

/// Opens the store's window over the running game, even for a dead or disconnected player.
void openStore();

}  // namespace kelvora::modMain
