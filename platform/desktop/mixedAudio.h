#pragma once

#include <memory>
#include <string>

#include "platform/audio.h"
#include "platform/desktop/soundMixer.h"

namespace kelvora {

/// A sound effect on a channel of the mixer, always played from its start.
class MixedSound : public SoundPeer {
 public:
  explicit MixedSound(std::shared_ptr<SoundMixer> mixer) : mixer_(std::move(mixer)) {}
  ~MixedSound() override;

  bool open(const std::string& file) override;
  void silence(bool silent) override;
  void rewind() override {}
  void play() override { mixer_->startEffect(channel_); }
  void stop() override { mixer_->stopEffect(channel_); }

 private:
  std::shared_ptr<SoundMixer> mixer_;
  int channel_ = -1;
};

/// The mixer's music.
class MixedMusic : public MusicPeer {
 public:
  explicit MixedMusic(std::shared_ptr<SoundMixer> mixer) : mixer_(std::move(mixer)) {}
  void play(const std::string& file) override { mixer_->startMusic(file); }
  void stop() override { mixer_->stopMusic(); }
  PlayState playState() const override { return mixer_->musicState(); }

 private:
  std::shared_ptr<SoundMixer> mixer_;
};

}  // namespace kelvora
