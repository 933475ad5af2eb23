#include <SDL.h>
#include <dlfcn.h>
#include <malloc.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/sound/mix.h"
#include "platform/sound/mixerDevice.h"
#include "platform/sound/soundFiles.h"

namespace kelvora {

namespace {

constexpr int blockSamples = 1024;  // 23 ms: the maximum delay before a new sound is mixed

void ignoreLog(void*, int, SDL_LogPriority, const char*) {}
void ignoreAlsa(const char*, int, const char*, int, const char*, ...) {}

/// Keeps SDL from printing that there is no sound device.
void keepQuiet() {
  SDL_LogSetOutputFunction(ignoreLog, nullptr);
  using Report = void (*)(const char*, int, const char*, int, const char*, ...);
  using SetReport = int (*)(Report);
  if (void* found = dlsym(RTLD_DEFAULT, "snd_lib_error_set_handler")) reinterpret_cast<SetReport>(found)(ignoreAlsa);
}

/// SDL's default device. It is open only while something plays, because an open device asks for samples 43 times a
/// second, even when paused, and some drivers look for new devices all the time.
class SdlDevice final : public MixerDevice {
 public:
  SdlDevice();
  ~SdlDevice() override;
  SdlDevice(const SdlDevice&) = delete;
  SdlDevice& operator=(const SdlDevice&) = delete;

  void setEffect(int channel, const std::string& file) override;
  void freeEffect(int channel) override;
  void silence(int channel, bool silent) override;
  void startEffect(int channel) override;
  void stopEffect(int channel) override { mix_.stopEffect(channel); }
  bool startMusic(const std::string& file) override;
  void stopMusic() override { mix_.stopTrack(); }
  bool isMusicPlaying() const override { return mix_.isTrackPlaying(); }
  void wake() override;
  bool rest() override;

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds retryInterval{30};

  struct Unheard {
    std::string file;
    bool isSilent = false;
  };

  void load(int channel);
  static void SDLCALL play(void* mix, Uint8* stream, int length);
  void open();
  void close();

  Mix mix_;
  std::map<int, Unheard> unheard_;  ///< by channel: effects that haven't been played, and so aren't loaded
  SDL_AudioDeviceID device_ = 0;    ///< 0 while closed
  Clock::time_point nextTry_{};     ///< earliest time of the next attempt after a failed one
  bool wasHeard_ = false;           ///< since the last rest
};

SdlDevice::SdlDevice() {
  keepQuiet();
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_APP_NAME, "Kelvora");
}

SdlDevice::~SdlDevice() {
  close();
  SDL_TLSCleanup();  // frees SDL's thread-local data, which it only does by itself for its own threads
}

void SdlDevice::setEffect(int channel, const std::string& file) {
  mix_.setEffect(channel, {});
  unheard_[channel] = {file};
}

void SdlDevice::freeEffect(int channel) {
  mix_.setEffect(channel, {});
  unheard_.erase(channel);
}

void SdlDevice::silence(int channel, bool silent) {
  const auto found = unheard_.find(channel);
  if (found == unheard_.end()) {
    mix_.silence(channel, silent);
  } else {
    found->second.isSilent = silent;
  }
}

void SdlDevice::startEffect(int channel) {
  if (device_ == 0) return;
  load(channel);
  mix_.startEffect(channel);
}

void SdlDevice::load(int channel) {
  const auto found = unheard_.extract(channel);
  if (!found) return;
  mix_.setEffect(channel, loadWave(found.mapped().file));
  mix_.silence(channel, found.mapped().isSilent);
  malloc_trim(0);  // reading takes three times the file's size
}

void SdlDevice::play(void* mix, Uint8* stream, int length) {
  static_cast<Mix*>(mix)->read(
      {reinterpret_cast<std::int16_t*>(stream), static_cast<std::size_t>(length) / sizeof(std::int16_t)});
}

void SdlDevice::open() {
  if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return;
  SDL_AudioSpec format{};
  format.freq = sampleRate;
  format.format = AUDIO_S16SYS;
  format.channels = 2;
  format.samples = blockSamples;
  format.callback = &SdlDevice::play;
  format.userdata = &mix_;
  device_ = SDL_OpenAudioDevice(nullptr, 0, &format, nullptr, 0);
  if (device_ == 0) {
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
  } else {
    SDL_PauseAudioDevice(device_, 0);
  }
}

void SdlDevice::close() {
  if (device_ == 0) return;
  SDL_CloseAudioDevice(device_);
  SDL_QuitSubSystem(SDL_INIT_AUDIO);
  device_ = 0;
}

/// Reopens the current default device if the old one is lost. If there is none, stops everything.
void SdlDevice::wake() {
  wasHeard_ = true;
  if (device_ != 0 && SDL_GetAudioDeviceStatus(device_) == SDL_AUDIO_STOPPED) close();
  if (device_ != 0 || Clock::now() < nextTry_) return;
  open();
  if (device_ != 0) return;
  nextTry_ = Clock::now() + retryInterval;
  mix_.stopAll();
}

bool SdlDevice::rest() {
  if (mix_.isPlaying()) {
    wasHeard_ = true;
  } else if (!std::exchange(wasHeard_, false)) {
    close();
  }
  return device_ == 0;
}

bool SdlDevice::startMusic(const std::string& file) {
  stopMusic();
  std::unique_ptr<Track> track = openMp3(file);
  if (!track) return false;
  wake();
  if (device_ == 0) return false;
  mix_.startTrack(std::move(track));
  return true;
}

}  // namespace

}  // namespace kelvora

extern "C" kelvora::MixerDevice* kelvoraCreateMixerDevice() { return new kelvora::SdlDevice; }
