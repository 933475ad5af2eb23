#include <gtest/gtest.h>

#include "base/fault.h"
#include "tests/audio/audioTest.h"

namespace kelvora {
namespace {

[[noreturn]] void fail() { throw RuntimeFault("broken"); }

/// A part of the window system that fails at every change.
class BrokenPeer : public Peer {
 public:
  void changed(PropertyId) override { fail(); }
};

/// A machine whose devices can be broken.
class BrokenMachine : public HeadlessBackend {
 public:
  bool refusesWindows = false;
  bool refusesDraws = false;
  bool refusesSettings = false;

  void realize(Form& form) override {
    if (refusesWindows) fail();
    HeadlessBackend::realize(form);
  }
  using HeadlessBackend::random;
  float random() override {
    if (refusesDraws) fail();
    return HeadlessBackend::random();
  }
  void writeSetting(const std::string& section, const std::string& key, const std::string& value) override {
    if (refusesSettings) fail();
    HeadlessBackend::writeSetting(section, key, value);
  }
};

/// Audio is optional: a statement that fails is skipped, and the next one runs.
class AudioFaults : public AudioTest {
 protected:
  AudioFaults() {
    openSounds();
    machine.scriptedDraws = {0.7F};  // the third track, so the rotation continues with the fourth
    broken.scriptedDraws = machine.scriptedDraws;
    *frmMain;
  }
  ~AudioFaults() override {
    frmMusic.unload();  // its player belongs to the broken machine
    releaseUnloadedForms();
    installBackend(&machine);
  }
  static void breakDown(Control& control) { control.peer = std::make_unique<BrokenPeer>(); }
  /// The stored setting of the menu item.
  static std::string stored(HeadlessBackend& where) { return where.settings[{"audio", "music"}]; }

  BrokenMachine broken;
};

TEST_F(AudioFaults, MusicStartsEvenIfItsFormFailsToLoad) {
  broken.refusesWindows = true;
  installBackend(&broken);
  EXPECT_NO_THROW(soundMan::startMusic());
  EXPECT_TRUE(frmMusic->tmrNext.Enabled);
  EXPECT_EQ(soundMan::currentMusic, 3);
}

TEST_F(AudioFaults, TrackIsDrawnEvenIfTheTimerFails) {
  breakDown(frmMusic->tmrNext);
  EXPECT_NO_THROW(soundMan::startMusic());
  EXPECT_EQ(soundMan::currentMusic, 3);
}

TEST_F(AudioFaults, FailedDrawKeepsTheTrackAndStartsTheTimer) {
  broken.refusesDraws = true;
  installBackend(&broken);
  soundMan::currentMusic = 2;
  EXPECT_NO_THROW(soundMan::startMusic());
  EXPECT_EQ(soundMan::currentMusic, 2);
  EXPECT_TRUE(frmMusic->tmrNext.Enabled);
}

TEST_F(AudioFaults, FailedTrackDoesNotAdvanceTheRotation) {
  soundMan::startMusic();
  breakDown(frmMusic->player);
  EXPECT_NO_THROW(soundMan::playMusic(5));
  EXPECT_EQ(soundMan::currentMusic, 3);
}

TEST_F(AudioFaults, CheckingTheMenuItemPlaysAndSavesEvenIfTheTimerFails) {
  frmMain->mnuAudioMusic.Checked = false;
  breakDown(frmMusic->tmrNext);
  EXPECT_NO_THROW(frmMain->mnuAudioMusic.Click());
  EXPECT_EQ(machine.tracks, std::vector<std::string>{track(4)});
  EXPECT_EQ(stored(machine), "True");
}

TEST_F(AudioFaults, UncheckingTheMenuItemStopsTheMusicAndSavesEvenIfItsCheckMarkFails) {
  soundMan::startMusic();
  soundMan::nextMusic();
  breakDown(frmMain->mnuAudioMusic);
  EXPECT_NO_THROW(frmMain->mnuAudioMusic.Click());
  EXPECT_FALSE(frmMain->mnuAudioMusic.Checked);
  EXPECT_FALSE(frmMusic.isLoaded());
  EXPECT_EQ(machine.playState, psStopped);
  EXPECT_EQ(stored(machine), "False");
}

TEST_F(AudioFaults, UncheckingTheMenuItemSavesEvenIfTheUnloadFails) {
  soundMan::startMusic();
  soundMan::nextMusic();
  breakDown(*frmMusic);  // hiding it fails
  EXPECT_NO_THROW(frmMain->mnuAudioMusic.Click());
  EXPECT_EQ(machine.playState, psStopped);
  EXPECT_EQ(stored(machine), "False");
}

TEST_F(AudioFaults, UncheckingTheMenuItemStopsTheMusicEvenIfTheTimerFails) {
  soundMan::startMusic();
  soundMan::nextMusic();
  breakDown(frmMusic->tmrNext);
  EXPECT_NO_THROW(frmMain->mnuAudioMusic.Click());
  EXPECT_EQ(machine.playState, psStopped);
  EXPECT_EQ(stored(machine), "False");
}

TEST_F(AudioFaults, CheckMarkThatCannotBeSavedStillCounts) {
  broken.refusesSettings = true;
  installBackend(&broken);
  frmMain->mnuAudioMusic.Checked = false;
  EXPECT_NO_THROW(frmMain->mnuAudioMusic.Click());
  EXPECT_TRUE(frmMain->mnuAudioMusic.Checked);
  EXPECT_EQ(broken.tracks, std::vector<std::string>{track(4)});
}

}  // namespace
}  // namespace kelvora
