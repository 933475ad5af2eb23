#include <SDL.h>
#include <SDL_mixer.h>
#include <dlfcn.h>

#include <vector>

#include "platform/sound/mixerDevice.h"

namespace kelvora {

namespace {

constexpr int sampleRate = 44100;  // of all sound files
constexpr int speakers = 2;
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

/// Mixed by SDL, in the format of all sound files.
class SdlMixerDevice final : public MixerDevice {
 public:
  SdlMixerDevice();
  ~SdlMixerDevice() override;
  SdlMixerDevice(const SdlMixerDevice&) = delete;
  SdlMixerDevice& operator=(const SdlMixerDevice&) = delete;

  void loadEffect(int channel, const std::string& file) override;
  void freeEffect(int channel) override;
  void silence(int channel, bool silent) override;
  void startEffect(int channel) override;
  void stopEffect(int channel) override;
  bool startMusic(const std::string& file) override;
  void stopMusic() override;
  bool isMusicPlaying() const override { return Mix_PlayingMusic() != 0; }

 private:
  Mix_Chunk* effect(int channel) const;

  bool isOpen_ = false;
  std::vector<Mix_Chunk*> effects_;  ///< by channel; null where nothing is loaded
  Mix_Music* music_ = nullptr;
};

SdlMixerDevice::SdlMixerDevice() {
  keepQuiet();
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  SDL_SetHint(SDL_HINT_APP_NAME, "Kelvora");
  if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return;
  isOpen_ = Mix_OpenAudioDevice(sampleRate, AUDIO_S16SYS, speakers, blockSamples, nullptr, 0) == 0;
  if (!isOpen_) {
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
    return;
  }
  Mix_Init(MIX_INIT_MP3);
  Mix_AllocateChannels(0);
}

SdlMixerDevice::~SdlMixerDevice() {
  if (isOpen_) {
    stopMusic();
    for (int channel = 0; channel < static_cast<int>(effects_.size()); ++channel) freeEffect(channel);
    Mix_CloseAudio();
    Mix_Quit();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
  }
  SDL_TLSCleanup();  // frees SDL's thread-local data, which it only does by itself for its own threads
}

Mix_Chunk* SdlMixerDevice::effect(int channel) const {
  const auto index = static_cast<std::size_t>(channel);
  return index < effects_.size() ? effects_[index] : nullptr;
}

void SdlMixerDevice::loadEffect(int channel, const std::string& file) {
  if (!isOpen_) return;
  freeEffect(channel);
  const auto index = static_cast<std::size_t>(channel);
  if (index >= effects_.size()) {
    effects_.resize(index + 1);
    Mix_AllocateChannels(channel + 1);
  }
  effects_[index] = Mix_LoadWAV(file.c_str());
}

void SdlMixerDevice::freeEffect(int channel) {
  if (effect(channel) == nullptr) return;
  stopEffect(channel);
  Mix_FreeChunk(effects_[static_cast<std::size_t>(channel)]);
  effects_[static_cast<std::size_t>(channel)] = nullptr;
  silence(channel, false);
}

void SdlMixerDevice::silence(int channel, bool silent) {
  if (channel < static_cast<int>(effects_.size())) Mix_Volume(channel, silent ? 0 : MIX_MAX_VOLUME);
}

void SdlMixerDevice::startEffect(int channel) {
  if (Mix_Chunk* chunk = effect(channel)) Mix_PlayChannel(channel, chunk, 0);
}

void SdlMixerDevice::stopEffect(int channel) {
  if (effect(channel) != nullptr) Mix_HaltChannel(channel);
}

bool SdlMixerDevice::startMusic(const std::string& file) {
  stopMusic();
  if (!isOpen_) return false;
  music_ = Mix_LoadMUS(file.c_str());
  return music_ != nullptr && Mix_PlayMusic(music_, 0) == 0;
}

void SdlMixerDevice::stopMusic() {
  if (music_ == nullptr) return;
  Mix_HaltMusic();
  Mix_FreeMusic(music_);
  music_ = nullptr;
}

}  // namespace

}  // namespace kelvora

extern "C" kelvora::MixerDevice* kelvoraCreateMixerDevice() { return new kelvora::SdlMixerDevice; }
