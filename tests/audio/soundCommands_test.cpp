#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/audio/audioTest.h"

namespace kelvora {
namespace {

/// The console commands for sound.
class SoundConsole : public AudioTest {
 protected:
  SoundConsole() { openSounds(); }
};

TEST_F(SoundConsole, PlaysAnEffect) {
  enter("~playsound:3");
  EXPECT_EQ(machine.soundCommands, playing("puShield.wav"));
  machine.soundCommands.clear();
  enter("~PLAYSOUND:3");
  EXPECT_EQ(machine.soundCommands, playing("puShield.wav"));
  machine.soundCommands.clear();
  enter("~ playsound :3");
  EXPECT_EQ(machine.soundCommands, playing("puShield.wav"));
  machine.soundCommands.clear();
  enter("~playsound:3:9");
  EXPECT_EQ(machine.soundCommands, playing("puShield.wav"));
}

TEST_F(SoundConsole, ReadsNonNumericTextAsZero) {
  enter("~playsound:boo");
  EXPECT_EQ(machine.soundCommands, playing("capture.wav"));
  enter("~playmusic:");
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(0)});
}

TEST_F(SoundConsole, UnknownNumbersDoNothing) {
  enter("~playsound:9");
  enter("~playsound:-1");
  enter("~playmusic:6");
  enter("~playmusic:-1");
  EXPECT_TRUE(machine.soundCommands.empty());
  EXPECT_TRUE(machine.tracks.empty());
}

TEST_F(SoundConsole, OverflowingNumbersEndTheClient) {
  EXPECT_THROW(enter("~playsound:32768"), RuntimeFault);
  EXPECT_THROW(enter("~playmusic:-32769"), RuntimeFault);
}

TEST_F(SoundConsole, Q082VerbsWithoutAnArgumentEndTheClient) {
  EXPECT_THROW(enter("~playsound"), RuntimeFault);
  EXPECT_THROW(enter("~playmusic"), RuntimeFault);
}

TEST_F(SoundConsole, PlaysATrack) {
  enter("~playmusic:4");
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(4)});
  EXPECT_EQ(soundMan::currentMusic, 4);
}

TEST_F(SoundConsole, StoreTrackDoesNotAdvanceTheRotation) {
  enter("~playmusic:4");
  enter("~playmusic:0");
  EXPECT_EQ(machine.tracks.back(), track(0));
  EXPECT_EQ(soundMan::currentMusic, 4);
}

TEST_F(SoundConsole, ReloadsTheSounds) {
  enter("~reloadsounds");
  ASSERT_EQ(machine.soundCommands.size(), 8U);
  EXPECT_EQ(machine.soundCommands.front(), "bounce.wav open");
}

TEST_F(SoundConsole, ShowsAndHidesTheMusicWindow) {
  enter("~showmusic");
  EXPECT_TRUE(frmMusic.isVisible());
  EXPECT_TRUE(machine.modalForms.empty());
  EXPECT_FALSE(frmMusic->tmrNext.Enabled) << "showing it starts nothing";
  enter("~hidemusic");
  EXPECT_FALSE(frmMusic.isVisible());
  EXPECT_TRUE(frmMusic.isLoaded());
}

TEST_F(SoundConsole, UnloadingStopsTheMusicForGood) {
  soundMan::startMusic();
  soundMan::nextMusic();
  enter("~unloadmusic");
  EXPECT_EQ(machine.playState, psStopped);
  EXPECT_FALSE(frmMusic.isLoaded());
  tickMusic(psStopped);
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.size(), 1U);
  EXPECT_NO_THROW(enter("~unloadmusic"));
}

TEST_F(SoundConsole, Q271NoTrackFollowsOneStartedAfterAnUnload) {
  enter("~unloadmusic");
  enter("~playmusic:2");
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(2)});
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.size(), 1U);
  enter("~loadmusic");
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.size(), 2U) << "the timer runs again";
}

TEST_F(SoundConsole, LoadingPreparesTheRotationAndTheTimerStartsIt) {
  machine.scriptedDraws = {0.99F};
  enter("~loadmusic");
  EXPECT_TRUE(frmMusic.isLoaded());
  EXPECT_EQ(soundMan::currentMusic, 4);
  EXPECT_TRUE(machine.tracks.empty());
  tickMusic(psReady);
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(5)});
}

}  // namespace
}  // namespace kelvora
