#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace kelvora {

/// Sound that is read instead of heard, for films. Used by one thread.
class Soundtrack {
 public:
  virtual ~Soundtrack() = default;

  /// Plays a wave file from its first sample, even if it is playing. A file that can't be loaded is silent.
  virtual void startEffect(const std::string& file) = 0;
  virtual void stopEffect(const std::string& file) = 0;

  /// Plays an MP3 file instead of the current one. A file that can't be played is silent.
  virtual void startMusic(const std::string& file) = 0;
  virtual void stopMusic() = 0;

  /// Replaces all of `stereo` with the next samples.
  virtual void read(std::span<std::int16_t> stereo) = 0;
};

/// The function `createSoundtrackName` of the sound module. The caller owns the result.
using CreateSoundtrack = Soundtrack*();
inline constexpr const char* createSoundtrackName = "kelvoraCreateSoundtrack";

}  // namespace kelvora
