#include "platform/sound/mix.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kelvora {

Mix::Channel* Mix::find(int channel) {
  const auto index = static_cast<std::size_t>(channel);
  return index < channels_.size() ? &channels_[index] : nullptr;
}

void Mix::setEffect(int channel, Effect effect) {
  const std::lock_guard lock(mutex_);
  const auto index = static_cast<std::size_t>(channel);
  if (index >= channels_.size()) channels_.resize(index + 1);
  const std::size_t end = effect.samples.size();
  channels_[index] = {std::move(effect), end};
}

void Mix::silence(int channel, bool silent) {
  const std::lock_guard lock(mutex_);
  if (Channel* found = find(channel)) found->isSilent = silent;
}

void Mix::startEffect(int channel) {
  const std::lock_guard lock(mutex_);
  if (Channel* found = find(channel)) found->next = 0;
}

void Mix::stopEffect(int channel) {
  const std::lock_guard lock(mutex_);
  if (Channel* found = find(channel)) found->next = found->effect.samples.size();
}

void Mix::startTrack(std::unique_ptr<Track> track) {
  const std::lock_guard lock(mutex_);
  track_ = std::move(track);
  isTrackPlaying_ = track_ != nullptr;
}

bool Mix::isPlaying() const {
  const std::lock_guard lock(mutex_);
  return track_ || std::any_of(channels_.begin(), channels_.end(),
                               [](const Channel& channel) { return channel.next < channel.effect.samples.size(); });
}

void Mix::stopAll() {
  stopTrack();
  const std::lock_guard lock(mutex_);
  for (Channel& channel : channels_) channel.next = channel.effect.samples.size();
}

void Mix::add(Channel& channel) {
  const auto& [isStereo, samples] = channel.effect;
  const std::size_t each = isStereo ? 1 : 2;  // speakers that play a sample
  const std::size_t count = std::min(samples.size() - channel.next, sums_.size() / each);
  if (!channel.isSilent) {
    for (std::size_t i = 0; i < count * each; ++i) sums_[i] += samples[channel.next + i / each];
  }
  channel.next += count;
}

void Mix::read(std::span<std::int16_t> stereo) {
  const std::lock_guard lock(mutex_);
  std::fill(stereo.begin(), stereo.end(), std::int16_t{0});
  if (track_ && !track_->read(stereo)) {
    track_.reset();
    isTrackPlaying_ = false;
  }
  sums_.assign(stereo.begin(), stereo.end());
  for (Channel& channel : channels_) add(channel);
  using Range = std::numeric_limits<std::int16_t>;
  std::transform(sums_.begin(), sums_.end(), stereo.begin(), [](std::int32_t sum) {
    return static_cast<std::int16_t>(std::clamp<std::int32_t>(sum, Range::min(), Range::max()));
  });
}

}  // namespace kelvora
