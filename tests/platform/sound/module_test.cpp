#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <memory>

#include "generated/sourceFolder.h"
#include "platform/desktop/soundMixer.h"
#include "platform/sound/mixerDevice.h"
#include "platform/sound/soundFiles.h"
#include "platform/sound/soundtrack.h"
#include "tests/platform/sound/recording.h"

namespace kelvora {
namespace {

constexpr const char* effectFile = KELVORA_SOURCE_DIR "/sounds/bounce.wav";

TEST(SoundModule, IsFoundFromTheTestsOfABuildTree) {
  const std::filesystem::path module = soundModulePath();
  EXPECT_EQ(module.filename(), "kelvora-sound.so");
  EXPECT_TRUE(module.is_absolute());
  EXPECT_TRUE(std::filesystem::is_regular_file(module));
}

TEST(SoundModule, OpensADeviceThatPlays) {
  ScopedEnvironment environment;
  environment.set("SDL_AUDIODRIVER", "dummy");
  const std::unique_ptr<MixerDevice> device = openMixerDevice(soundModulePath());
  EXPECT_TRUE(device->startMusic(KELVORA_SOURCE_DIR "/sounds/music1.mp3"));
  EXPECT_TRUE(device->isMusicPlaying());
  device->stopMusic();
  EXPECT_FALSE(device->isMusicPlaying());
}

TEST(SoundModule, MixesASoundtrackWithoutADevice) {
  const Samples wave = loadWave(effectFile).samples;
  ASSERT_FALSE(wave.empty());
  const std::unique_ptr<Soundtrack> track = openSoundtrack(soundModulePath());
  ASSERT_NE(track, nullptr);
  track->startEffect(effectFile);
  Samples stereo(2 * wave.size());
  track->read(stereo);
  for (std::size_t i = 0; i < stereo.size(); ++i) ASSERT_EQ(stereo[i], wave[i / 2]) << i;
  track->stopEffect("unknown.wav");
  track->startMusic(KELVORA_SOURCE_DIR "/sounds/music1.mp3");
  track->read(stereo);
  const Samples music = decode(KELVORA_SOURCE_DIR "/sounds/music1.mp3");
  ASSERT_GT(music.size(), stereo.size());
  EXPECT_TRUE(std::equal(stereo.begin(), stereo.end(), music.begin()));
  track->stopMusic();
  track->read(stereo);
  EXPECT_EQ(stereo, Samples(stereo.size()));
}

/// A file that isn't a library, and a library of something else.
class UselessModule : public ::testing::TestWithParam<const char*> {
 protected:
  UselessModule() { std::ofstream(folder.path() / "text.so") << "no library"; }
  std::string path() const {
    const std::string name = GetParam();
    return name == "text.so" ? (folder.path() / name).string() : name;
  }
  TemporaryFolder folder;
};

TEST_P(UselessModule, LeavesTheGameSilentWithoutAMessage) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  bool settled = false;
  {
    SoundMixer mixer(path());
    const int effect = mixer.openEffect(effectFile);
    mixer.silenceEffect(effect, true);
    mixer.startEffect(effect);
    mixer.stopEffect(effect);
    mixer.startMusic(KELVORA_SOURCE_DIR "/sounds/music1.mp3");
    settled = waitFor([&] { return mixer.musicState() == psStopped; });
    mixer.stopMusic();
    mixer.closeEffect(effect);
  }
  EXPECT_TRUE(settled) << "as for an unplayable track: the timer moves on to the next";
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_P(UselessModule, HasNoSoundtrack) { EXPECT_EQ(openSoundtrack(path()), nullptr); }

INSTANTIATE_TEST_SUITE_P(Files, UselessModule,
                         ::testing::Values("", "/nowhere/kelvora-sound.so", "libm.so.6", "/", "text.so"),
                         [](const auto& instance) { return "Number" + std::to_string(instance.index); });

}  // namespace
}  // namespace kelvora
