#include <gtest/gtest.h>

#include <fstream>

#include "generated/sourceFolder.h"
#include "platform/desktop/soundMixer.h"
#include "platform/sound/mixerDevice.h"
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

INSTANTIATE_TEST_SUITE_P(Files, UselessModule,
                         ::testing::Values("", "/nowhere/kelvora-sound.so", "libm.so.6", "/", "text.so"),
                         [](const auto& instance) { return "Number" + std::to_string(instance.index); });

}  // namespace
}  // namespace kelvora
