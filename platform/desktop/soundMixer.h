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

/// Runs all sound on its own thread, which loads the sound module, opens the device and controls it, so that no call
/// blocks. The thread is created with the first file. The device is opened a little later, so that it doesn't delay the
/// first windows. Game code never runs on this thread.
class SoundMixer {
 public:
  /// The patience of the game.
  static constexpr std::chrono::milliseconds usualPatience{500};
  /// How long the device stays closed after the first file, unless an effect is played.
  static constexpr std::chrono::milliseconds calm{400};

  /// `module` is the path of the mixer's module. Without it, or without a sound device, everything is silent. Effects
  /// that couldn't be started within `patience` are dropped, because a late sound would confuse.
  explicit SoundMixer(std::string module = soundModulePath(), std::chrono::milliseconds patience = usualPatience)
      : module_(std::move(module)), patience_(patience) {}
  ~SoundMixer();
  SoundMixer(const SoundMixer&) = delete;
  SoundMixer& operator=(const SoundMixer&) = delete;

  /// Loads the wave file and returns the channel, which is in use until it is closed.
  int openEffect(const std::string& file);
  void closeEffect(int channel);
  void silenceEffect(int channel, bool silent);
  void startEffect(int channel);
  void stopEffect(int channel);

  void startMusic(const std::string& file);
  void stopMusic();
  /// psTransitioning between the command and the first sound.
  PlayState musicState() const;

 private:
  using Clock = std::chrono::steady_clock;
  struct Command {
    std::function<void(MixerDevice&)> run;
    Clock::time_point latest;
  };

  /// Queues a command for the thread. False if no thread can be started.
  bool post(std::function<void(MixerDevice&)> run, Clock::time_point latest = Clock::time_point::max());
  /// Ends the calm early, because an effect is waiting for the device.
  void await();
  void work();
  /// Sets the track's state, unless another track has been requested since.
  bool noteMusic(int track, PlayState state);

  const std::string module_;
  const std::chrono::milliseconds patience_;
  std::vector<bool> channels_;  ///< true if in use
  mutable std::mutex mutex_;    ///< guards everything below; never held during calls of the device
  std::condition_variable arrived_;
  std::deque<Command> commands_;
  bool closing_ = false;
  bool isAwaited_ = false;               ///< an effect is waiting for the device
  const MixerDevice* device_ = nullptr;  ///< set once open; lives as long as the thread
  int track_ = 0;                        ///< counts the music commands
  PlayState musicState_ = psReady;
  std::thread thread_;
};

}  // namespace kelvora
