#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "platform/sound/mix.h"

namespace kelvora {

/// Beyond these limits, a file isn't a sound effect.
inline constexpr std::size_t maxWaveBytes = 4 * 1024 * 1024;
inline constexpr int maxEffectSeconds = 30;

/// Reads a wave file of any common format. Without samples if that isn't possible.
Effect loadWave(const std::string& file);

/// Opens an MP3 file. Null if it can't be played.
std::unique_ptr<Track> openMp3(const std::string& file);

}  // namespace kelvora
