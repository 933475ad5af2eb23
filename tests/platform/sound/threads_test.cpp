#include <gtest/gtest.h>

#include <system_error>
#include <thread>

#include "generated/sourceFolder.h"
#include "platform/desktop/soundMixer.h"
#include "tests/support/noThreads.h"

namespace kelvora {
namespace {

TEST(SoundThread, IsNotNeeded) {
  const NoThreads machine;
  ASSERT_THROW(std::thread([] {}).join(), std::system_error);
  SoundMixer mixer;
  const int effect = mixer.openEffect(KELVORA_SOURCE_DIR "/sounds/bounce.wav");
  mixer.startEffect(effect);
  mixer.silenceEffect(effect, true);
  mixer.stopEffect(effect);
  mixer.startMusic(KELVORA_SOURCE_DIR "/sounds/music1.mp3");
  EXPECT_EQ(mixer.musicState(), psStopped);
  mixer.stopMusic();
  mixer.closeEffect(effect);
}

}  // namespace
}  // namespace kelvora
