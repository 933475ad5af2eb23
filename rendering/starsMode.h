#pragma once

namespace kelvora::modMain {

/// True if the background objects are stars, which are grey and stand still. Otherwise they are quarks, which are
/// coloured and move.
bool isStarsMode();

}  // namespace kelvora::modMain
