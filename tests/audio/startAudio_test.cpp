#include <gtest/gtest.h>

#include <algorithm>

#include "tests/audio/audioTest.h"

namespace kelvora {
namespace {

/// Sound at start-up, depending on the command line.
class StartAudio : public AudioTest {
 protected:
  void start(const std::string& line) {
    machine.commandLineText = line;
    machine.onDoEvents = [] { throw ProcessEnded{}; };
    EXPECT_THROW(modMain::startGame(), ProcessEnded);
    machine.onDoEvents = nullptr;
  }
  bool soundsAreOpen() { return frmSound.isLoaded() && frmSound->lastIndex() == 8 && frmSound->mm(8).isOpen(); }
};

TEST_F(StartAudio, OpensTheEffectsAndStartsATrack) {
  machine.scriptedDraws = {0.7F};
  start("");
  EXPECT_TRUE(soundsAreOpen());
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(4)});
  EXPECT_FALSE(frmMusic.isVisible());
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.back(), track(5));
}

TEST_F(StartAudio, DrawsTheTrackAfterSeedingTheGenerator) {
  start("");
  Randomize(static_cast<float>(machine.seconds));
  const int current = std::max(1, static_cast<int>(5 * Rnd()));
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(current + 1)});
}

TEST_F(StartAudio, WithoutMusicOnlyOpensTheEffects) {
  start("-NoMusic");
  EXPECT_TRUE(soundsAreOpen());
  EXPECT_FALSE(frmMusic.isLoaded());
  EXPECT_NE(soundMan::musicFiles[1], "");
}

TEST_F(StartAudio, WithoutSoundLoadsTheMusicToNoEffect) {
  start("xNOSOUNDx");
  EXPECT_FALSE(frmSound.isLoaded());
  EXPECT_TRUE(frmMusic.isLoaded());
  EXPECT_TRUE(frmMusic->tmrNext.Enabled);
  EXPECT_TRUE(machine.tracks.empty());
}

TEST_F(StartAudio, WithoutSoundAndMusicLoadsNoForm) {
  start("nosound nomusic");
  EXPECT_FALSE(frmSound.isLoaded());
  EXPECT_FALSE(frmMusic.isLoaded());
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(StartAudio, LeavesMusicOffIfTheMenuSaysSo) {
  machine.settings[{"audio", "music"}] = "False";
  start("");
  EXPECT_TRUE(soundsAreOpen());
  EXPECT_FALSE(frmMusic.isLoaded());
  EXPECT_TRUE(machine.tracks.empty());
}

}  // namespace
}  // namespace kelvora
