#pragma once

#include <string>

namespace kelvora {

/// The machine's sound device: a channel for each effect, and one music track. Used by one thread, which may be held up
/// by it; without a device every call does nothing. One may exist at a time.
class MixerDevice {
 public:
  virtual ~MixerDevice() = default;

  virtual void loadEffect(int channel, const std::string& file) = 0;
  virtual void freeEffect(int channel) = 0;
  virtual void silence(int channel, bool silent) = 0;
  /// From its first sample, whether it is playing or not.
  virtual void startEffect(int channel) = 0;
  virtual void stopEffect(int channel) = 0;

  /// False if the file cannot be played.
  virtual bool startMusic(const std::string& file) = 0;
  virtual void stopMusic() = 0;
  /// May be asked by any thread once a track has been started.
  virtual bool isMusicPlaying() const = 0;
};

/// What the sound module has under `createMixerDeviceName`: opens the default device. The caller deletes it.
using CreateMixerDevice = MixerDevice*();
inline constexpr const char* createMixerDeviceName = "kelvoraCreateMixerDevice";

}  // namespace kelvora
