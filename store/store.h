#pragma once

namespace kelvora::modMain {

/// Opens the store's window over the running game, whether connected or alive or not.
void openStore();

}  // namespace kelvora::modMain
