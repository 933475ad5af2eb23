#include <map>
#include <memory>
#include <string>

#include "platform/desktop/soundModule.h"
#include "platform/sound/mixerDevice.h"
#include "platform/win32/musicStream.h"
#include "platform/win32/shortPath.h"
#include "platform/win32/wideText.h"

namespace kelvora {

namespace {

bool command(const std::wstring& text) { return mciSendStringW(text.c_str(), nullptr, 0, nullptr) == 0; }

struct Effect {
  std::string file;  ///< until the first attempt to open it
  bool isOpen = false;
  bool isSilent = false;
};

/// Each effect has a device of the system's media control, the music a wave device. The media control's own player of
/// MP3 files would load a dozen libraries.
class MciDevice : public MixerDevice {
 public:
  ~MciDevice() override { command(L"close all"); }

  void setEffect(int channel, const std::string& file) override {
    freeEffect(channel);
    effects_[channel].file = file;
  }

  void freeEffect(int channel) override {
    if (isOpen(channel)) command(L"close " + nameOf(channel));
    effects_.erase(channel);
  }

  void silence(int channel, bool silent) override {
    const auto effect = effects_.find(channel);
    if (effect == effects_.end()) return;
    effect->second.isSilent = silent;
    if (silent) stopEffect(channel);
  }

  /// Opens the effect's device first if it hasn't been played before: a device takes memory and time.
  void startEffect(int channel) override {
    const auto found = effects_.find(channel);
    if (found == effects_.end() || found->second.isSilent) return;
    Effect& effect = found->second;
    if (!effect.isOpen && !effect.file.empty()) {
      effect.isOpen =
          command(L"open \"" + shortPath(wideFromUtf8(effect.file)) + L"\" type waveaudio alias " + nameOf(channel));
      effect.file.clear();
    }
    if (effect.isOpen) command(L"play " + nameOf(channel) + L" from 0");
  }

  void stopEffect(int channel) override {
    if (isOpen(channel)) command(L"stop " + nameOf(channel));
  }

  bool startMusic(const std::string& file) override { return music_.start(wideFromUtf8(file)); }
  void stopMusic() override { music_.stop(); }
  bool isMusicPlaying() const override { return music_.isPlaying(); }

 private:
  static std::wstring nameOf(int channel) { return L"kelvoraEffect" + std::to_wstring(channel); }

  bool isOpen(int channel) const {
    const auto effect = effects_.find(channel);
    return effect != effects_.end() && effect->second.isOpen;
  }

  std::map<int, Effect> effects_;
  MusicStream music_;
};

}  // namespace

// The system has its own mixer, so there is no module.
std::string soundModulePath() { return {}; }

std::unique_ptr<MixerDevice> openMixerDevice(const std::string&) { return std::make_unique<MciDevice>(); }

}  // namespace kelvora
