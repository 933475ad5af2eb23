#pragma once

#include <string>

namespace kelvora {

/// The sound device: a channel, 0 or more, for each effect, and one music track. Used by one thread, which it may
/// block. Without a device every call does nothing. One may exist at a time.
class MixerDevice {
 public:
  virtual ~MixerDevice() = default;

  /// Gives a channel a wave file, replacing its effect. The file is loaded when it is first played, because most
  /// effects aren't heard for a while. A channel whose file can't be loaded stays silent.
  virtual void setEffect(int channel, const std::string& file) = 0;
  virtual void freeEffect(int channel) = 0;
  virtual void silence(int channel, bool silent) = 0;
  /// Plays from the first sample, even if it is playing. Call `wake` first.
  virtual void startEffect(int channel) = 0;
  virtual void stopEffect(int channel) = 0;

  /// False if the file can't be played.
  virtual bool startMusic(const std::string& file) = 0;
  virtual void stopMusic() = 0;
  /// May be called from any thread once a track has been started.
  virtual bool isMusicPlaying() const = 0;

  /// Prepares for sound. May take a while after silence.
  virtual void wake() {}
  /// Call this regularly while it returns false. It saves power if nothing has been heard since the last call.
  virtual bool rest() { return true; }
};

/// The function `createMixerDeviceName` of the sound module. The caller owns the result.
using CreateMixerDevice = MixerDevice*();
inline constexpr const char* createMixerDeviceName = "kelvoraCreateMixerDevice";

}  // namespace kelvora
