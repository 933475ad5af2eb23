#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
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

/// Runs all sound on its own thread, which loads the sound module and controls the device, so that no call blocks. The
/// thread is created with the first file. The module is loaded a little later, so that it doesn't delay the first
/// windows. Game code never runs on this thread.
class SoundMixer {
 public:
  /// The default for how late an effect may start.
  static constexpr std::chrono::milliseconds usualMaxDelay{500};
  /// The module is loaded this long after the first file. An effect loads it at once.
  static constexpr std::chrono::milliseconds loadDelay{400};
  /// The device closes after one to two of these intervals without a sound.
  static constexpr std::chrono::milliseconds usualRest{5000};
  /// More commands to an effect are dropped while the thread is busy, as while the device hangs. The next one sets the
  /// effect's state anew.
  static constexpr std::size_t maxPending = 1'000;

  /// `module` is the path of the mixer's module. Without it, or without a sound device, everything is silent. Effects
  /// that couldn't be started within `maxDelay` are dropped, because a late sound would confuse.
  explicit SoundMixer(std::string module = soundModulePath(), std::chrono::milliseconds maxDelay = usualMaxDelay,
                      std::chrono::milliseconds rest = usualRest)
      : module_(std::move(module)), maxDelay_(maxDelay), rest_(rest) {}
  ~SoundMixer();
  SoundMixer(const SoundMixer&) = delete;
  SoundMixer& operator=(const SoundMixer&) = delete;

  /// Returns a channel for the wave file, which is loaded when it is first played. The channel is in use until it is
  /// closed.
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
  using Command = std::function<void(MixerDevice&)>;

  /// Queues a command for the thread. False if no thread can be started.
  bool post(Command command);
  /// Queues a command that servers can cause.
  void postEffect(Command command);
  /// Loads the module without further delay, because an effect is waiting for the device.
  void loadNow();
  void work();
  /// Sets the track's state, unless another track has been requested since.
  bool noteMusic(int track, PlayState state);

  const std::string module_;
  const std::chrono::milliseconds maxDelay_;
  const std::chrono::milliseconds rest_;
  std::vector<bool> channels_;  ///< true if in use
  std::thread thread_;          ///< created and joined by the game's thread
  mutable std::mutex mutex_;    ///< guards everything below; never held during calls of the device
  std::condition_variable arrived_;
  std::deque<Command> commands_;
  bool closing_ = false;
  bool isEffectWaiting_ = false;         ///< for the device
  const MixerDevice* device_ = nullptr;  ///< set once loaded; lives as long as the thread
  int track_ = 0;                        ///< counts the music commands
  PlayState musicState_ = psReady;
};

}  // namespace kelvora
