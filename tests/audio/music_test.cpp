#include <gtest/gtest.h>

#include <filesystem>

#include "store/frmPowerups.h"
#include "tests/audio/audioTest.h"

namespace kelvora {
namespace {

class Music : public AudioTest {
 protected:
  /// Starts the rotation with this draw. `machine.tracks` then has the tracks started.
  void start(float draw) {
    machine.scriptedDraws = {draw};
    soundMan::startMusic();
    soundMan::nextMusic();
  }
};

TEST_F(Music, TracksHaveTheirFiles) {
  soundMan::initAudio();
  EXPECT_EQ(soundMan::musicFiles[0], machine.path + "/sounds/music_shopping.mp3");
  EXPECT_EQ(soundMan::musicFiles[1], machine.path + "/sounds/music1.mp3");
  EXPECT_EQ(soundMan::musicFiles[2], machine.path + "/sounds/music2.mp3");
  EXPECT_EQ(soundMan::musicFiles[3], machine.path + "/sounds/music3.mp3");
  EXPECT_EQ(soundMan::musicFiles[4], machine.path + "/sounds/music4.mp3");
  EXPECT_EQ(soundMan::musicFiles[5], machine.path + "/sounds/music5.mp3");
  for (const std::string& file : soundMan::musicFiles) EXPECT_TRUE(std::filesystem::exists(file)) << file;
}

TEST_F(Music, PlaysATrackByItsNumber) {
  openSounds();
  for (std::int16_t index = 1; index <= 5; ++index) {
    machine.tracks.clear();
    soundMan::playMusic(index);
    EXPECT_EQ(machine.tracks, std::vector<std::string>{track(index)});
    EXPECT_EQ(soundMan::currentMusic, index);
  }
}

TEST_F(Music, OfTheStoreDoesNotAdvanceTheRotation) {
  openSounds();
  soundMan::playMusic(3);
  soundMan::playMusic(0);
  EXPECT_EQ(machine.tracks, (std::vector<std::string>{track(3), track(0)}));
  EXPECT_EQ(soundMan::currentMusic, 3);
  soundMan::nextMusic();
  EXPECT_EQ(machine.tracks.back(), track(4));
}

TEST_F(Music, IgnoresUnknownTracks) {
  openSounds();
  soundMan::playMusic(2);
  for (const std::int16_t index : std::initializer_list<std::int16_t>{6, -1, 32767, -32768})
    EXPECT_NO_THROW(soundMan::playMusic(index));
  EXPECT_EQ(machine.tracks.size(), 1U);
  EXPECT_EQ(soundMan::currentMusic, 2);
}

TEST_F(Music, WrapsFromTheFifthTrackToTheFirst) {
  openSounds();
  soundMan::playMusic(5);
  soundMan::nextMusic();
  EXPECT_EQ(machine.tracks.back(), track(1));
  EXPECT_EQ(soundMan::currentMusic, 1);
  for (int number = 2; number <= 5; ++number) {
    soundMan::nextMusic();
    EXPECT_EQ(machine.tracks.back(), track(number));
  }
}

TEST_F(Music, Q183BeginsWithTheSecondTrackTwiceAsOftenAndNeverWithTheFirst) {
  openSounds();
  struct Row {
    float draw;
    int current;
  };
  for (const Row& row : {Row{0, 1}, Row{0.19F, 1}, Row{0.2F, 1}, Row{0.39F, 1}, Row{0.41F, 2}, Row{0.59F, 2},
                         Row{0.61F, 3}, Row{0.79F, 3}, Row{0.81F, 4}, Row{0.9999F, 4}}) {
    start(row.draw);
    EXPECT_EQ(machine.tracks.back(), track(row.current + 1)) << row.draw;
    machine.scriptedDraws = {row.draw};
    soundMan::startMusic();
    EXPECT_EQ(soundMan::currentMusic, row.current) << row.draw;
  }
}

TEST_F(Music, DoesNotStartWhileSwitchedOff) {
  openSounds();
  frmMain->mnuAudioMusic.Checked = false;
  start(0.5F);
  soundMan::playMusic(1);
  EXPECT_FALSE(frmMusic.isLoaded());
  EXPECT_TRUE(machine.tracks.empty());
  EXPECT_EQ(machine.scriptedDraws.size(), 1U) << "nothing is drawn";
  EXPECT_EQ(soundMan::currentMusic, 0);
}

TEST_F(Music, IsSwitchedOffByTheCommandLineInAnyCase) {
  openSounds();
  for (const char* line : {"nomusic", "NoMusic", "--NOMUSIC", "nosound nomusicplease"}) {
    machine.commandLineText = line;
    soundMan::playMusic(1);
    EXPECT_TRUE(machine.tracks.empty()) << line;
  }
  machine.commandLineText = "no music nosound";
  soundMan::playMusic(1);
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(1)});
}

TEST_F(Music, ContinuesWhenATrackHasEnded) {
  openSounds();
  start(0.5F);
  ASSERT_EQ(machine.tracks.back(), track(3));
  tickMusic(psPlaying);
  EXPECT_EQ(machine.tracks.size(), 1U);
  tickMusic(psTransitioning);
  EXPECT_EQ(machine.tracks.size(), 1U);
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.back(), track(4));
  tickMusic(psReady);
  EXPECT_EQ(machine.tracks.back(), track(5));
  EXPECT_EQ(machine.tracks.size(), 3U);
}

TEST_F(Music, OnlyStatesOneAndTenEndATrack) {
  openSounds();
  start(0.5F);
  for (int state = 0; state <= 11; ++state) {
    machine.tracks.clear();
    tickMusic(static_cast<PlayState>(state));
    EXPECT_EQ(machine.tracks.size(), state == 1 || state == 10 ? 1U : 0U) << state;
  }
}

TEST_F(Music, IsCheckedEveryTwoSeconds) {
  openSounds();
  start(0.5F);
  EXPECT_EQ(frmMusic->tmrNext.Interval, 2000);
  machine.playState = psStopped;
  tick(1999);
  passEvents();
  EXPECT_EQ(machine.tracks.size(), 1U);
  tick(1);
  passEvents();
  EXPECT_EQ(machine.tracks.size(), 2U);
}

TEST_F(Music, SkipsAMissingFileAtTheNextTick) {
  machine.missingFiles.insert(track(4));
  openSounds();
  start(0.5F);
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.back(), track(4));
  EXPECT_EQ(machine.playState, psStopped);
  tick(2000);
  passEvents();
  EXPECT_EQ(machine.tracks.back(), track(5));
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(Music, Q277PausesInTheStoreEvenAfterTheStoreTrackHasEnded) {
  openSounds();
  start(0.5F);
  ASSERT_EQ(soundMan::currentMusic, 3);
  login();
  modMain::openStore();
  ASSERT_TRUE(frmPowerups.isVisible());
  EXPECT_EQ(machine.tracks.back(), track(0)) << "the store's own";
  const std::size_t started = machine.tracks.size();
  tickMusic(psStopped);
  tickMusic(psReady);
  EXPECT_EQ(machine.tracks.size(), started);
  frmPowerups.unload();
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.size(), started + 1);
  EXPECT_EQ(machine.tracks.back(), track(4)) << "the one after the track before the store";
}

TEST_F(Music, FormLoadsHiddenAtItsDesignSize) {
  openSounds();
  start(0.5F);
  EXPECT_TRUE(frmMusic.isLoaded());
  EXPECT_FALSE(frmMusic.isVisible());
  EXPECT_EQ(frmMusic->Caption.get(), "Music Control");
  EXPECT_EQ(frmMusic->design.clientWidth, 4470);
  EXPECT_EQ(frmMusic->design.clientHeight, 645);
  EXPECT_EQ(frmMusic->design.border, Form::Border::Fixed);
  EXPECT_EQ(frmMusic->player.Caption.get(), "music3.mp3");
}

TEST_F(Music, StopsAtOnceWhenTheMenuItemIsUnchecked) {
  openSounds();
  start(0.5F);
  frmMain->mnuAudioMusic.Click();
  EXPECT_FALSE(frmMain->mnuAudioMusic.Checked);
  EXPECT_EQ(machine.playState, psStopped);
  EXPECT_FALSE(frmMusic.isLoaded());
  EXPECT_EQ((machine.settings[{"audio", "music"}]), "False");
  tickMusic(psStopped);
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.size(), 1U) << "no timer runs";
  EXPECT_FALSE(frmMusic.isLoaded());
}

TEST_F(Music, StartsWithTracksTwoToFiveWhenTheMenuItemIsChecked) {
  openSounds();
  for (const float draw : {0.0F, 0.25F, 0.45F, 0.65F, 0.99F}) {
    frmMain->mnuAudioMusic.Checked = false;
    machine.scriptedDraws = {draw};
    frmMain->mnuAudioMusic.Click();
    const int current = std::max(1, static_cast<int>(5 * draw));
    EXPECT_EQ(machine.tracks.back(), track(current + 1)) << draw;
    EXPECT_EQ((machine.settings[{"audio", "music"}]), "True");
    EXPECT_TRUE(frmMusic->tmrNext.Enabled);
  }
}

TEST_F(Music, Q277SwitchedOnInTheStoreItOnlyPlaysOutside) {
  openSounds();
  login();
  frmMain->mnuAudioMusic.Checked = false;
  modMain::openStore();
  EXPECT_TRUE(machine.tracks.empty());
  machine.scriptedDraws = {0.5F};
  frmMain->mnuAudioMusic.Click();
  tickMusic(psReady);
  EXPECT_TRUE(machine.tracks.empty());
  frmPowerups->cmdDone.Click();
  tickMusic(psReady);
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(3)});
}

TEST_F(Music, Q184WithNomusicCheckingTheMenuItemOnlyStartsTheTimer) {
  openSounds();
  machine.commandLineText = "NoMusic";
  frmMain->mnuAudioMusic.Checked = false;
  frmMain->mnuAudioMusic.Click();
  EXPECT_TRUE(frmMusic.isLoaded());
  EXPECT_TRUE(frmMusic->tmrNext.Enabled);
  tickMusic(psReady);
  tickMusic(psStopped);
  EXPECT_TRUE(machine.tracks.empty());
}

TEST_F(Music, Q181WithoutSoundTheTimerTriesEmptyNames) {
  machine.commandLineText = "nosound";
  start(0.5F);
  EXPECT_EQ(soundMan::currentMusic, 3) << "the rotation continues anyway";
  tickMusic(psReady);
  tickMusic(psReady);
  EXPECT_EQ(soundMan::currentMusic, 5);
  for (const std::string& file : soundMan::musicFiles) EXPECT_EQ(file, "");
  EXPECT_TRUE(machine.tracks.empty());
}

TEST_F(Music, Q182ReloadingTheSoundsBringsTheMusicBack) {
  machine.commandLineText = "nosound";
  start(0.5F);
  soundMan::reloadSounds();
  tickMusic(psReady);
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(4)});
  machine.soundCommands.clear();
  soundMan::playSound(soundMan::Sound{0});
  EXPECT_TRUE(machine.soundCommands.empty()) << "effects stay switched off";
}

TEST_F(Music, EndsWhenTheUserClosesItsWindow) {
  openSounds();
  start(0.5F);
  frmMusic->Show();
  frmMusic->closedByUser();
  EXPECT_EQ(machine.playState, psStopped);
  tickMusic(psStopped);
  EXPECT_EQ(machine.tracks.size(), 1U);
}

TEST_F(Music, IsReadyBeforeTheFirstTrack) {
  EXPECT_EQ(frmMusic->player.playState(), psReady);
  EXPECT_FALSE(frmMusic->tmrNext.Enabled);
}

}  // namespace
}  // namespace kelvora
