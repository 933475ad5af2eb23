#include <SDL.h>

#include <cstdint>
#include <map>
#include <span>
#include <string>

#include "platform/sound/mix.h"
#include "platform/sound/soundFiles.h"
#include "platform/sound/soundtrack.h"

namespace kelvora {

namespace {

/// A channel for each effect's file.
class MixedSoundtrack final : public Soundtrack {
 public:
  MixedSoundtrack() = default;
  ~MixedSoundtrack() override { SDL_TLSCleanup(); }  // the error texts of files that couldn't be loaded
  MixedSoundtrack(const MixedSoundtrack&) = delete;
  MixedSoundtrack& operator=(const MixedSoundtrack&) = delete;

  void startEffect(const std::string& file) override {
    const auto [channel, isNew] = channels_.try_emplace(file, static_cast<int>(channels_.size()));
    if (isNew) mix_.setEffect(channel->second, loadWave(file));
    mix_.startEffect(channel->second);
  }
  void stopEffect(const std::string& file) override {
    if (const auto channel = channels_.find(file); channel != channels_.end()) mix_.stopEffect(channel->second);
  }
  void startMusic(const std::string& file) override { mix_.startTrack(openMp3(file)); }
  void stopMusic() override { mix_.stopTrack(); }
  void read(std::span<std::int16_t> stereo) override { mix_.read(stereo); }

 private:
  Mix mix_;
  std::map<std::string, int> channels_;
};

}  // namespace

}  // namespace kelvora

extern "C" kelvora::Soundtrack* kelvoraCreateSoundtrack() { return new kelvora::MixedSoundtrack; }
