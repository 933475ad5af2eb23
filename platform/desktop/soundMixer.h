#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/audio.h"
#include "platform/desktop/soundModule.h"

namespace kelvora {

class MixerDevice;

/// Hands everything that sounds to a thread of its own, which loads the sound module, opens the device and commands it:
/// no call waits for the machine. Neither thread nor device exists before the first file is opened, and files and music
/// open the device a little later, so that it does not hold up the windows of the start. The game's code runs on none
/// of its threads.
class SoundMixer {
 public:
  /// An effect that could not be started within this time is left out: late, it would only confuse.
  static constexpr std::chrono::milliseconds patience{500};
  /// So long the device is left closed after the first file, unless an effect is to be heard.
  static constexpr std::chrono::milliseconds calm{400};

  /// `module`: the file with the mixer device. Without it, as without a sound device, nothing sounds.
  explicit SoundMixer(std::string module = soundModulePath()) : module_(std::move(module)) {}
  ~SoundMixer();
  SoundMixer(const SoundMixer&) = delete;
  SoundMixer& operator=(const SoundMixer&) = delete;

  /// Reads the wave file; the channel that it gets is its own until it is closed.
  int openEffect(const std::string& file);
  void closeEffect(int channel);
  void silenceEffect(int channel, bool silent);
  void startEffect(int channel);
  void stopEffect(int channel);

  void startMusic(const std::string& file);
  void stopMusic();
  /// A PlayState; psTransitioning between the command and the first sound.
  int musicState() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct Command {
    std::function<void(MixerDevice&)> run;
    Clock::time_point latest;
  };

  /// False if the machine has no thread left.
  bool post(std::function<void(MixerDevice&)> run, Clock::time_point latest = Clock::time_point::max());
  /// An effect is to be heard: the device is opened now.
  void await();
  void work();
  /// Sets what the track is doing, unless another one has been asked for since.
  bool noteMusic(int track, int state);

  const std::string module_;
  std::vector<bool> channels_;  ///< taken or free
  mutable std::mutex mutex_;    ///< of everything below; never held while the device is called
  std::condition_variable arrived_;
  std::deque<Command> commands_;
  bool closing_ = false;
  bool isAwaited_ = false;               ///< an effect is to be heard
  const MixerDevice* device_ = nullptr;  ///< once it is open; lives as long as the thread
  int track_ = 0;                        ///< counts what the music was told
  int musicState_ = psReady;
  std::thread thread_;
};

}  // namespace kelvora
