#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "base/fault.h"
#include "tests/audio/audioTest.h"

namespace kelvora {
namespace {

constexpr std::array<const char*, 9> files = {
    "capture.wav",       "bounce.wav",     "error.wav",   "puShield.wav",  "puTurbo.wav",
    "puChargedTail.wav", "puLongTail.wav", "puLaser.wav", "puMissile.wav",
};

class SoundEffects : public AudioTest {};

TEST_F(SoundEffects, AreNineOpenDevices) {
  soundMan::initAudio();
  ASSERT_EQ(frmSound->lastIndex(), 8);
  for (int slot = 0; slot <= 8; ++slot) {
    SoundDevice& device = frmSound->mm(slot);
    EXPECT_EQ(device.FileName, machine.path + "/sounds/" + files[static_cast<std::size_t>(slot)]);
    EXPECT_TRUE(std::filesystem::exists(device.FileName)) << device.FileName;
    EXPECT_FALSE(device.Notify);
    EXPECT_TRUE(device.Wait);
    EXPECT_FALSE(device.Shareable);
    EXPECT_EQ(device.DeviceType, "WaveAudio");
    EXPECT_TRUE(device.isOpen());
  }
  std::vector<std::string> opened;
  for (const char* file : files) opened.push_back(std::string(file) + " open");
  EXPECT_EQ(machine.soundCommands, opened);
}

TEST_F(SoundEffects, RewindAndStartTheDeviceOfTheirSlot) {
  openSounds();
  for (std::int16_t slot = 0; slot <= 8; ++slot) {
    machine.soundCommands.clear();
    soundMan::playSound(soundMan::Sound{slot});
    EXPECT_EQ(machine.soundCommands, playing(files[static_cast<std::size_t>(slot)])) << slot;
  }
}

TEST_F(SoundEffects, IgnoreUnknownNumbers) {
  openSounds();
  for (const std::int16_t slot : std::initializer_list<std::int16_t>{9, -1, 32767, -32768}) {
    EXPECT_NO_THROW(soundMan::playSound(soundMan::Sound{slot}));
    EXPECT_NO_THROW(soundMan::stopSound(soundMan::Sound{slot}));
  }
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(SoundEffects, AreSwitchedOffByTheMenu) {
  openSounds();
  frmMain->mnuAudioSfx.Click();
  soundMan::playSound(soundMan::Sound{2});
  EXPECT_TRUE(machine.soundCommands.empty());
  frmMain->mnuAudioSfx.Click();
  soundMan::playSound(soundMan::Sound{2});
  EXPECT_EQ(machine.soundCommands, playing("error.wav"));
}

TEST_F(SoundEffects, AreSwitchedOffByTheCommandLineInAnyCase) {
  openSounds();
  for (const char* line : {"NoSound", "nosound", "-NOSOUND", "some xnosoundx thing"}) {
    machine.commandLineText = line;
    soundMan::playSound(soundMan::Sound{0});
    EXPECT_TRUE(machine.soundCommands.empty()) << line;
  }
  machine.commandLineText = "no sound nomusic";
  soundMan::playSound(soundMan::Sound{0});
  EXPECT_EQ(machine.soundCommands, playing("capture.wav"));
}

TEST_F(SoundEffects, AreStoppedRegardlessOfTheSwitches) {
  openSounds();
  machine.commandLineText = "nosound";
  frmMain->mnuAudioSfx.Checked = false;
  for (std::int16_t slot = 0; slot <= 8; ++slot) {
    machine.soundCommands.clear();
    soundMan::stopSound(soundMan::Sound{slot});
    EXPECT_EQ(machine.soundCommands, stopping(files[static_cast<std::size_t>(slot)])) << slot;
  }
}

TEST_F(SoundEffects, StaySilentBetweenStopAndNextPlay) {
  openSounds();
  soundMan::playSound(soundMan::Sound{4});
  soundMan::stopSound(soundMan::Sound{4});
  EXPECT_TRUE(frmSound->mm(4).Silent());
  soundMan::playSound(soundMan::Sound{5});
  EXPECT_TRUE(frmSound->mm(4).Silent());
  EXPECT_FALSE(frmSound->mm(5).Silent());
  soundMan::playSound(soundMan::Sound{4});
  EXPECT_FALSE(frmSound->mm(4).Silent());
}

TEST_F(SoundEffects, FailSilentlyWithoutTheirFile) {
  machine.missingFiles.insert(machine.path + "/sounds/puLaser.wav");
  EXPECT_NO_THROW(openSounds());
  EXPECT_FALSE(frmSound->mm(7).isOpen());
  EXPECT_TRUE(frmSound->mm(8).isOpen());
  EXPECT_NO_THROW(soundMan::playSound(soundMan::Sound{7}));
  EXPECT_NO_THROW(soundMan::stopSound(soundMan::Sound{7}));
  EXPECT_TRUE(machine.soundCommands.empty());
  EXPECT_TRUE(machine.messageBoxes.empty());
}

TEST_F(SoundEffects, FailSilentlyIfNeverOpened) {
  for (std::int16_t slot = 0; slot <= 8; ++slot) {
    EXPECT_NO_THROW(soundMan::playSound(soundMan::Sound{slot}));
    EXPECT_NO_THROW(soundMan::stopSound(soundMan::Sound{slot}));
  }
  EXPECT_EQ(frmSound->lastIndex(), 0) << "the form itself brings one device";
  EXPECT_TRUE(machine.soundCommands.empty());
}

TEST_F(SoundEffects, Q278AreReloadedExceptForTheFirst) {
  openSounds();
  soundMan::reloadSounds();
  EXPECT_EQ(frmSound->lastIndex(), 8);
  std::vector<std::string> opened;
  for (std::size_t slot = 1; slot < files.size(); ++slot) opened.push_back(std::string(files[slot]) + " open");
  EXPECT_EQ(machine.soundCommands, opened) << "the first one is already open";
  machine.soundCommands.clear();
  soundMan::playSound(soundMan::Sound{0});
  soundMan::playSound(soundMan::Sound{8});
  EXPECT_EQ(machine.soundCommands.size(), 6U);
}

TEST_F(SoundEffects, ReloadFindsANewlyAddedFile) {
  machine.missingFiles.insert(machine.path + "/sounds/capture.wav");
  openSounds();
  machine.missingFiles.clear();
  soundMan::reloadSounds();
  EXPECT_TRUE(frmSound->mm(0).isOpen());
}

TEST_F(SoundEffects, FormHasItsTitleAndIsNeverShown) {
  openSounds();
  soundMan::playSound(soundMan::Sound{0});
  EXPECT_EQ(frmSound->Caption.get(), "Sound Manager");
  EXPECT_TRUE(frmSound.isLoaded());
  EXPECT_FALSE(frmSound.isVisible());
}

TEST_F(SoundEffects, DevicesAreFoundOnlyByTheirSlots) {
  openSounds();
  EXPECT_THROW(frmSound->mm(-1), RuntimeFault);
  EXPECT_THROW(frmSound->mm(9), RuntimeFault);
}

TEST_F(SoundEffects, DeviceRefusesInvalidCommands) {
  SoundDevice device;
  EXPECT_THROW(device.Command("play"), RuntimeFault) << "not open";
  device.FileName = "/a/b.wav";
  device.Command("open");
  EXPECT_THROW(device.Command("open"), RuntimeFault);
  EXPECT_THROW(device.Command("dance"), RuntimeFault);
  EXPECT_EQ(machine.soundCommands, std::vector<std::string>{"b.wav open"});
}

}  // namespace
}  // namespace kelvora
