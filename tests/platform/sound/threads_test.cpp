#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <system_error>
#include <thread>

#include "generated/sourceFolder.h"
#include "platform/desktop/soundMixer.h"

namespace kelvora {
namespace {

/// While it exists, the process has no memory for another thread's stack.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 46);
    pthread_setattr_default_np(&huge);
    pthread_attr_destroy(&huge);
  }
  ~NoThreads() { pthread_setattr_default_np(&before_); }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  pthread_attr_t before_{};
};

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
