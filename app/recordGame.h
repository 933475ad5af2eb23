#pragma once

#include <memory>
#include <string>

#include "platform/recording/stream.h"

namespace kelvora {

/// Runs the game on the installed backend and records it. Where the sink isn't good, the game goes unrecorded. `name`
/// is what the box of a fault calls the recording.
void recordGame(std::unique_ptr<recording::Sink> sink, const std::string& name);

}  // namespace kelvora
