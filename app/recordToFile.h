#pragma once

namespace kelvora {

/// Runs the game on the installed backend. Records it into the file that KELVORA_RECORD names, if it names one.
void startGameRecorded();

}  // namespace kelvora
