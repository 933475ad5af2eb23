#pragma once

#include <string>
#include <vector>

struct Mix_Chunk;

namespace kelvora {

/// The machine's sound device, mixed by SDL: a channel for each effect, and one music track. Used by one thread, which
/// may be held up by it; without a device every call does nothing. One may exist at a time.
class MixerDevice {
 public:
  /// Opens the default device.
  MixerDevice();
  ~MixerDevice();
  MixerDevice(const MixerDevice&) = delete;
  MixerDevice& operator=(const MixerDevice&) = delete;

  bool isOpen() const { return isOpen_; }

  void loadEffect(int channel, const std::string& file);
  void freeEffect(int channel);
  void silence(int channel, bool silent);
  /// From its first sample, whether it is playing or not.
  void startEffect(int channel);
  void stopEffect(int channel);

  /// False if the file cannot be played.
  bool startMusic(const std::string& file);
  void stopMusic();
  /// May be asked by any thread once a track has been started.
  static bool isMusicPlaying();

 private:
  Mix_Chunk* effect(int channel) const;

  bool isOpen_ = false;
  std::vector<Mix_Chunk*> effects_;  ///< by channel; null where nothing is loaded
  void* music_ = nullptr;            ///< SDL's track
};

}  // namespace kelvora
