#include <SDL.h>
#include <SDL_mixer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "generated/sourceFolder.h"
#include "tests/platform/sound/recording.h"

namespace kelvora {
namespace {

struct Track {
  double seconds = 0;
  double peak = 0;
  double level = 0;  ///< root mean square
  double start = 0;  ///< the largest sample of the first and the last millisecond
  double end = 0;
};

double largest(const std::int16_t* first, const std::int16_t* last) {
  double size = 0;
  for (; first != last; ++first) size = std::max(size, std::abs(*first / 32768.0));
  return size;
}

/// Decodes the whole file as the game's mixer does.
Track decode(const std::string& file) {
  ScopedEnvironment environment;
  environment.set("SDL_AUDIODRIVER", "dummy");
  Track track;
  SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) return track;
  if (Mix_OpenAudioDevice(sampleRate, AUDIO_S16SYS, 2, 1024, nullptr, 0) == 0) {
    if (Mix_Chunk* chunk = Mix_LoadWAV(file.c_str())) {
      const Samples samples(reinterpret_cast<std::int16_t*>(chunk->abuf),
                            reinterpret_cast<std::int16_t*>(chunk->abuf) + chunk->alen / 2);
      constexpr std::ptrdiff_t millisecond = sampleRate / 1000 * 2;
      const std::int16_t* first = samples.data();
      const std::int16_t* last = first + samples.size();
      double energy = 0;
      for (const double sample : samples) energy += sample * sample / 32768 / 32768;
      track.seconds = static_cast<double>(samples.size()) / 2 / sampleRate;
      track.peak = largest(first, last);
      track.level = std::sqrt(energy / static_cast<double>(samples.size()));
      track.start = largest(first, first + millisecond);
      track.end = largest(last - millisecond, last);
      Mix_FreeChunk(chunk);
    }
    Mix_CloseAudio();
  }
  Mix_Quit();
  SDL_QuitSubSystem(SDL_INIT_AUDIO);
  return track;
}

class Tracks : public ::testing::TestWithParam<const char*> {};

TEST_P(Tracks, LastAMinuteAtTheSameLoudnessWithoutClicks) {
  const Track track = decode(std::string(KELVORA_SOURCE_DIR "/sounds/") + GetParam() + ".mp3");
  EXPECT_GE(track.seconds, 60);
  EXPECT_LE(track.seconds, 75);
  EXPECT_GT(track.peak, 0.25);
  EXPECT_LT(track.peak, 0.6) << "room for the effects";
  EXPECT_GT(track.level, 0.06);
  EXPECT_LT(track.level, 0.085);
  EXPECT_LT(track.start, 0.02);
  EXPECT_LT(track.end, 0.02);
}

INSTANTIATE_TEST_SUITE_P(Rotation, Tracks,
                         ::testing::Values("music1", "music2", "music3", "music4", "music5", "music_shopping"),
                         [](const auto& instance) { return std::string(instance.param); });

}  // namespace
}  // namespace kelvora
