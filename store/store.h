#pragma once

namespace kelvora::modMain {

/// Opens the store's window over the running game, connected or not, alive or not.
void openStore();

}  // namespace kelvora::modMain
