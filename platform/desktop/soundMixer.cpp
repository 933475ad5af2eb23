#include "platform/desktop/soundMixer.h"

#include <algorithm>
#include <memory>
#include <system_error>
#include <utility>

#include "platform/sound/mixerDevice.h"

namespace kelvora {

SoundMixer::~SoundMixer() {
  {
    const std::lock_guard lock(mutex_);
    closing_ = true;
  }
  arrived_.notify_one();
  if (thread_.joinable()) thread_.join();
}

bool SoundMixer::post(Command command) {
  if (!thread_.joinable()) {
    try {
      thread_ = std::thread([this] { work(); });
    } catch (const std::system_error&) {
      return false;
    }
  }
  bool isLoaded = false;
  {
    const std::lock_guard lock(mutex_);
    commands_.push_back(std::move(command));
    isLoaded = device_ != nullptr;
  }
  if (isLoaded) arrived_.notify_one();  // before that, a command alone wakes nobody
  return true;
}

void SoundMixer::postEffect(Command command) {
  {
    const std::lock_guard lock(mutex_);
    if (commands_.size() >= maxPending) return;
  }
  post(std::move(command));
}

void SoundMixer::loadNow() {
  {
    const std::lock_guard lock(mutex_);
    isEffectWaiting_ = true;
  }
  arrived_.notify_one();
}

void SoundMixer::work() {
  std::unique_lock lock(mutex_);
  arrived_.wait_for(lock, loadDelay, [this] { return closing_ || isEffectWaiting_; });
  if (closing_) return;
  lock.unlock();
  const std::unique_ptr<MixerDevice> device = openMixerDevice(module_);
  lock.lock();
  device_ = device.get();
  const auto isDue = [this] { return closing_ || !commands_.empty(); };
  bool isResting = true;
  for (;;) {
    if (isResting) {
      arrived_.wait(lock, isDue);
    } else {
      arrived_.wait_for(lock, rest_, isDue);
    }
    if (closing_) return;
    Command command = [&isResting](MixerDevice& awake) { isResting = awake.rest(); };
    if (!commands_.empty()) {
      isResting = false;
      command = std::move(commands_.front());
      commands_.pop_front();
    }
    lock.unlock();
    command(*device);
    lock.lock();
  }
}

int SoundMixer::openEffect(const std::string& file) {
  const auto free = std::find(channels_.begin(), channels_.end(), false);
  const int channel = static_cast<int>(free - channels_.begin());
  if (free == channels_.end()) {
    channels_.push_back(true);
  } else {
    *free = true;
  }
  post([channel, file](MixerDevice& device) { device.setEffect(channel, file); });
  return channel;
}

void SoundMixer::closeEffect(int channel) {
  channels_[static_cast<std::size_t>(channel)] = false;
  post([channel](MixerDevice& device) { device.freeEffect(channel); });
}

void SoundMixer::silenceEffect(int channel, bool silent) {
  postEffect([channel, silent](MixerDevice& device) { device.silence(channel, silent); });
}

void SoundMixer::startEffect(int channel) {
  loadNow();
  postEffect([channel, latest = Clock::now() + maxDelay_](MixerDevice& device) {
    if (Clock::now() <= latest) device.wake();
    if (Clock::now() <= latest) device.startEffect(channel);
  });
}

void SoundMixer::stopEffect(int channel) {
  postEffect([channel](MixerDevice& device) { device.stopEffect(channel); });
}

bool SoundMixer::noteMusic(int track, PlayState state) {
  const std::lock_guard lock(mutex_);
  if (track != track_) return false;
  musicState_ = state;
  return true;
}

void SoundMixer::startMusic(const std::string& file) {
  int track = 0;
  {
    const std::lock_guard lock(mutex_);
    track = ++track_;
    musicState_ = psTransitioning;
  }
  const bool posted = post([this, track, file](MixerDevice& device) {
    if (!noteMusic(track, psTransitioning)) return;
    const bool plays = device.startMusic(file);
    noteMusic(track, plays ? psPlaying : psStopped);
  });
  if (!posted) noteMusic(track, psStopped);
}

void SoundMixer::stopMusic() {
  {
    const std::lock_guard lock(mutex_);
    ++track_;
    if (musicState_ == psReady) return;
    musicState_ = psStopped;
  }
  post([](MixerDevice& device) { device.stopMusic(); });
}

PlayState SoundMixer::musicState() const {
  const MixerDevice* device = nullptr;
  {
    const std::lock_guard lock(mutex_);
    if (musicState_ != psPlaying) return musicState_;
    device = device_;
  }
  return device->isMusicPlaying() ? psPlaying : psStopped;
}

}  // namespace kelvora
