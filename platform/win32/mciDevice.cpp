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

/// The system's media control: a device for each effect, and one for the music.
class MciDevice : public MixerDevice {
 public:
  ~MciDevice() override { command(L"close all"); }

  void loadEffect(int channel, const std::string& file) override {
    if (command(L"open " + quoted(file) + L" type waveaudio alias " + nameOf(channel))) silent_[channel] = false;
  }

  void freeEffect(int channel) override {
    if (silent_.erase(channel) > 0) command(L"close " + nameOf(channel));
  }

  void silence(int channel, bool silent) override {
    const auto effect = silent_.find(channel);
    if (effect == silent_.end()) return;
    effect->second = silent;
    if (silent) stopEffect(channel);
  }

  void startEffect(int channel) override {
    const auto effect = silent_.find(channel);
    if (effect != silent_.end() && !effect->second) command(L"play " + nameOf(channel) + L" from 0");
  }

  void stopEffect(int channel) override {
    if (silent_.contains(channel)) command(L"stop " + nameOf(channel));
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

  std::map<int, bool> silent_;  ///< of the open channels
  std::atomic<Clock::rep> musicEnd_ = 0;
};

}  // namespace

// The system has its own mixer, so there is no module.
std::string soundModulePath() { return {}; }

std::unique_ptr<MixerDevice> openMixerDevice(const std::string&) { return std::make_unique<MciDevice>(); }

}  // namespace kelvora
