#include "audio/soundMan.h"

#include <algorithm>

#include "audio/frmMusic.h"
#include "audio/frmSound.h"
#include "base/fault.h"
#include "base/text.h"
#include "frontend/frmMain.h"
#include "platform/backend.h"
#include "store/frmPowerups.h"

namespace kelvora::soundMan {

std::array<std::string, lastTrack + 1> musicFiles;
std::int16_t currentMusic = 0;

namespace {

constexpr std::array<const char*, soundCount> soundFiles = {
    "capture.wav",       "bounce.wav",     "error.wav",   "puShield.wav",  "puTurbo.wav",
    "puChargedTail.wav", "puLongTail.wav", "puLaser.wav", "puMissile.wav",
};

bool isSlot(int slot) { return 0 <= slot && slot < soundCount; }

std::string soundFolder() { return applicationPath() + "/sounds/"; }

void openSound(std::int16_t slot) {
  if (slot > frmSound->lastIndex()) frmSound->loadDevice();
  SoundDevice& device = frmSound->mm(slot);
  device.Notify = false;
  device.Wait = true;
  device.Shareable = false;
  device.DeviceType = "WaveAudio";
  device.FileName = soundFolder() + soundFiles[static_cast<std::size_t>(slot)];
  device.Command("open");
}

void command(std::int16_t slot, const char* word) {
  resumeNext([slot, word] { frmSound->mm(slot).Command(word); });
}

std::int16_t drawnTrack() {
  // Quirk Q-183: the draw yields 0 to 4, and 0 becomes 1. So the music begins with the second track twice as often as
  // with the third, fourth or fifth, and never with the first.
  const float draw = 5 * Rnd();
  return std::clamp<std::int16_t>(static_cast<std::int16_t>(draw), 1, lastTrack);
}

}  // namespace

void clear() {
  musicFiles = {};
  currentMusic = 0;
}

bool isOnCommandLine(const char* word) { return lowerCase(commandLine()).find(word) != std::string::npos; }

void initAudio() {
  // Quirk Q-181: sets the tracks' names together with the effects, so a client started without sound has no music
  // either. Its timer keeps trying empty names.
  musicFiles[0] = soundFolder() + "music_shopping.mp3";
  for (std::size_t track = 1; track < musicFiles.size(); ++track) {
    musicFiles[track] = soundFolder() + "music" + std::to_string(track) + ".mp3";
  }
  for (std::int16_t slot = 0; slot < soundCount; ++slot) {
    resumeNext([slot] { openSound(slot); });
  }
}

void reloadSounds() {
  // Quirk Q-278: the first device stays and is already open, so its file isn't read again.
  while (frmSound->lastIndex() > 0) frmSound->unloadDevice();
  // Quirk Q-182: doesn't check the command line, so a client started without sound gets the tracks' names after all,
  // and with them its music.
  initAudio();
}

void playSound(Sound sound) {
  const auto slot = static_cast<std::int16_t>(sound);
  if (!frmMain->mnuAudioSfx.Checked || isOnCommandLine("nosound") || !isSlot(slot)) return;
  resumeNext([slot] { frmSound->mm(slot).Silent(false); });
  command(slot, "prev");
  command(slot, "play");
}

void stopSound(Sound sound) {
  const auto slot = static_cast<std::int16_t>(sound);
  if (!isSlot(slot)) return;
  resumeNext([slot] { frmSound->mm(slot).Silent(true); });
  command(slot, "prev");
  command(slot, "stop");
}

void startMusic() {
  if (!frmMain->mnuAudioMusic.Checked) return;
  resumeNext([] { *frmMusic; });
  resumeNext([] { frmMusic->tmrNext.Enabled = true; });
  resumeNext([] { currentMusic = drawnTrack(); });
}

void playMusic(std::int16_t index) {
  // Quirk Q-184: once the game runs, only this checks the command line. With "nomusic", ticking the menu item starts
  // the timer, and every track is refused here.
  if (!frmMain->mnuAudioMusic.Checked || isOnCommandLine("nomusic")) return;
  resumeNext([index] {
    if (index < 0 || index > lastTrack) raiseSubscriptOutOfRange();
    frmMusic->player.URL(musicFiles[static_cast<std::size_t>(index)]);
    if (index >= 1) currentMusic = index;
  });
}

void nextMusic() {
  // Quirk Q-277: the store falls silent once its own track has ended, and music that is switched on in it doesn't
  // start.
  if (frmPowerups.isVisible()) return;
  playMusic(currentMusic + 1 > lastTrack ? std::int16_t{1} : static_cast<std::int16_t>(currentMusic + 1));
}

}  // namespace kelvora::soundMan
