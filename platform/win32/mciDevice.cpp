#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "platform/desktop/soundModule.h"
#include "platform/sound/mixerDevice.h"
#include "platform/win32/win32.h"
// After the above.
#include <mmsystem.h>

namespace kelvora {

namespace {

using Clock = std::chrono::steady_clock;

std::wstring quoted(const std::string& path) {
  std::wstring wide(path.size(), L'\0');
  const int length = MultiByteToWideChar(CP_UTF8, 0, path.data(), static_cast<int>(path.size()), wide.data(),
                                         static_cast<int>(wide.size()));
  wide.resize(static_cast<std::size_t>(length));
  return L"\"" + wide + L"\"";
}

bool command(const std::wstring& text) { return mciSendStringW(text.c_str(), nullptr, 0, nullptr) == 0; }

struct Effect {
  std::string file;  ///< until the first attempt to open it
  bool isOpen = false;
  bool isSilent = false;
};

/// The system's media control: a device for each effect, and one for the music.
class MciDevice : public MixerDevice {
 public:
  ~MciDevice() override { command(L"close all"); }

  void loadEffect(int channel, const std::string& file) override {
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
      effect.isOpen = command(L"open " + quoted(effect.file) + L" type waveaudio alias " + nameOf(channel));
      effect.file.clear();
    }
    if (effect.isOpen) command(L"play " + nameOf(channel) + L" from 0");
  }

  void stopEffect(int channel) override {
    if (isOpen(channel)) command(L"stop " + nameOf(channel));
  }

  bool startMusic(const std::string& file) override {
    stopMusic();
    if (!command(L"open " + quoted(file) + L" type mpegvideo alias kelvoraMusic")) return false;
    command(L"set kelvoraMusic time format milliseconds");
    wchar_t length[32] = L"";
    mciSendStringW(L"status kelvoraMusic length", length, 32, nullptr);
    if (!command(L"play kelvoraMusic")) return false;
    musicEnd_ = (Clock::now() + std::chrono::milliseconds(std::wcstol(length, nullptr, 10))).time_since_epoch().count();
    return true;
  }

  void stopMusic() override {
    musicEnd_ = 0;
    command(L"close kelvoraMusic");
  }

  /// Goes by the track's length, because only the thread that has opened a device may query it.
  bool isMusicPlaying() const override { return Clock::now().time_since_epoch().count() < musicEnd_; }

 private:
  static std::wstring nameOf(int channel) { return L"kelvoraEffect" + std::to_wstring(channel); }

  bool isOpen(int channel) const {
    const auto effect = effects_.find(channel);
    return effect != effects_.end() && effect->second.isOpen;
  }

  std::map<int, Effect> effects_;
  std::atomic<Clock::rep> musicEnd_ = 0;
};

}  // namespace

// The system has its own mixer, so there is no module.
std::string soundModulePath() { return {}; }

std::unique_ptr<MixerDevice> openMixerDevice(const std::string&) { return std::make_unique<MciDevice>(); }

}  // namespace kelvora
