#pragma once

#include <string_view>

namespace kelvora {

// The first bytes of recorded files. The programs that play them know both, to tell one from the other.

inline constexpr std::string_view gameMagic = "kelvora recording\n";  ///< of a game, for kelvora-replay
inline constexpr std::string_view roundMagic = "kelvora round\n";     ///< of a round, for kelvora-server --replay

}  // namespace kelvora
