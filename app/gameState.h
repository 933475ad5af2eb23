#pragma once

#include <vector>

#include "platform/recording/gameState.h"

namespace kelvora {

/// Sums of the pictures and of the world, for the comparison of a replay with the recorded game.
std::vector<recording::StatePart> gameState();

}  // namespace kelvora
